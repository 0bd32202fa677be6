#pragma once

#include <ctime>

#include "sim/chip/Time.h"

namespace sim {

// The real time, for the ports.

inline Nanoseconds clockNow() {
    struct timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * second + now.tv_nsec;
}

inline struct timespec timespecOf(Nanoseconds time) {
    return {static_cast<time_t>(time / second), static_cast<long>(time % second)};
}

// Waits until then, to the microsecond: what sleep would add to the time is spun instead.
inline void waitUntil(Nanoseconds time) {
    constexpr Nanoseconds spun = 100 * microsecond;
    const struct timespec wake = timespecOf(time - spun);
    while (clockNow() < time - spun && clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &wake, nullptr) != 0) {
    }
    while (clockNow() < time) {
    }
}

} // namespace sim
