// Preloaded into the console by the transcripts: a sleep takes a twentieth of its time. The waits
// behind a reset are seconds, and most transcripts are about something else.

#include <dlfcn.h>
#include <time.h>

namespace {

constexpr long speed = 20;
constexpr long nanosecondsPerSecond = 1000000000;

timespec shortened(long long nanoseconds) {
    const long long shorter = nanoseconds > 0 ? nanoseconds / speed : 0;
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
