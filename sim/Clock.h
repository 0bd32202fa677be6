#pragma once

#include "sim/Time.h"

#include <ctime>

namespace sim {

// The real time, for the fronts.

inline Nanoseconds clockNow() {
    struct timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * second + now.tv_nsec;
}

inline struct timespec timespecOf(Nanoseconds time) {
    return {static_cast<time_t>(time / second), static_cast<long>(time % second)};
}

} // namespace sim
