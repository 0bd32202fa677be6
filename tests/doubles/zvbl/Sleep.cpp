// Sleeping of the whole process: logged, and over at once. The double stands before the C library in the
// symbol lookup of every program that links it, so these are the ones that the program and Qt call.

#include <cerrno>
#include <ctime>

#include "Script.h"

namespace {

constexpr long long NanosecondsPerSecond = 1000000000;

long long nanoseconds(const timespec &time) {
    return time.tv_sec * NanosecondsPerSecond + time.tv_nsec;
}

void logSleep(long long duration) {
    zvbldouble::logLine(zvbldouble::format("sleep %lld", duration / 1000000));
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int nanosleep(const timespec *request, timespec *remaining) {
    logSleep(nanoseconds(*request));
    if (remaining != nullptr)
        *remaining = {};
    return 0;
}

int clock_nanosleep(clockid_t clock, int flags, const timespec *request, timespec *remaining) {
    timespec now{};
    if ((flags & TIMER_ABSTIME) != 0)
        clock_gettime(clock, &now);
    logSleep(nanoseconds(*request) - nanoseconds(now));
    if (remaining != nullptr)
        *remaining = {};
    return 0;
}

int usleep(unsigned int microseconds) {
    logSleep(microseconds * 1000LL);
    return 0;
}

unsigned int sleep(unsigned int seconds) {
    logSleep(seconds * NanosecondsPerSecond);
    return 0;
}
}
#pragma GCC visibility pop
