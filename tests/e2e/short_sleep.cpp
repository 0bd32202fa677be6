// Preloaded into the console by the transcripts: a sleep takes a twentieth of its time. The waits
// after a reset are seconds, and most transcripts are about something else. RESTART_SPEED names another
// part for those of two seconds, in which a device has to come back that is plugged in anew.

#include <cstdlib>
#include <time.h>

#include <dlfcn.h>

namespace {

constexpr long usualSpeed = 20;
constexpr long nanosecondsPerSecond = 1000000000;

constexpr long long restart = 2LL * nanosecondsPerSecond;

long speedOf(long long nanoseconds) {
    const char *wish = std::getenv("RESTART_SPEED");
    const long speed = wish && nanoseconds >= restart * 9 / 10 ? std::atol(wish) : usualSpeed;
    return speed > 0 ? speed : usualSpeed;
}

timespec shortened(long long nanoseconds) {
    const long long shorter = nanoseconds > 0 ? nanoseconds / speedOf(nanoseconds) : 0;
    return {time_t(shorter / nanosecondsPerSecond), long(shorter % nanosecondsPerSecond)};
}

long long nanoseconds(const timespec &time) {
    return static_cast<long long>(time.tv_sec) * nanosecondsPerSecond + time.tv_nsec;
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int clock_nanosleep(clockid_t clock, int flags, const timespec *request, timespec *remaining) {
    using Function = int (*)(clockid_t, int, const timespec *, timespec *);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "clock_nanosleep"));
    timespec now{};
    if ((flags & TIMER_ABSTIME) != 0)
        clock_gettime(clock, &now);
    const timespec shorter = shortened(nanoseconds(*request) - nanoseconds(now));
    return real(CLOCK_MONOTONIC, 0, &shorter, remaining);
}

int nanosleep(const timespec *request, timespec *remaining) {
    using Function = int (*)(const timespec *, timespec *);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "nanosleep"));
    const timespec shorter = shortened(nanoseconds(*request));
    return real(&shorter, remaining);
}
}
#pragma GCC visibility pop
