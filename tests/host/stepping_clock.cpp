// Preloaded into a program: the machine's clock is set at each look at it, by days, forth and back in turn. What tells
// how much time went by is left alone.

#include <ctime>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr time_t day = 24 * 60 * 60;

time_t step() {
    static time_t looks;
    const time_t look = __atomic_add_fetch(&looks, 1, __ATOMIC_RELAXED);
    return look % 2 != 0 ? look * day : -look * day;
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int clock_gettime(clockid_t clock, timespec *now) noexcept {
    const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        now->tv_sec += step();
    return result;
}

int gettimeofday(timeval *now, void *) noexcept {
    timespec precise{};
    const int result = clock_gettime(CLOCK_REALTIME, &precise);
    *now = {precise.tv_sec, precise.tv_nsec / 1000};
    return result;
}

time_t time(time_t *where) noexcept {
    timespec precise{};
    clock_gettime(CLOCK_REALTIME, &precise);
    if (where != nullptr)
        *where = precise.tv_sec;
    return precise.tv_sec;
}

} // extern "C"
