#include "tests/damage/VirtualTime.h"

#include <algorithm>
#include <time.h>

#include <sys/syscall.h>
#include <unistd.h>

namespace damage {
namespace {

constexpr sim::Nanoseconds look = 200; // a look at the clock takes that long, so that no loop lasts for ever
sim::Nanoseconds time = sim::second;

} // namespace

sim::Nanoseconds now() {
    return time;
}

void advanceTo(sim::Nanoseconds later) {
    time = std::max(time, later);
}

} // namespace damage

namespace {

sim::Nanoseconds nanoseconds(const timespec &time) {
    return time.tv_sec * sim::second + time.tv_nsec;
}

} // namespace

// In the place of the C library's, for the clock that the bootloader library goes by.
#pragma GCC visibility push(default)
extern "C" {

int clock_gettime(clockid_t clock, timespec *time) noexcept {
    if (clock != CLOCK_MONOTONIC)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    damage::advanceTo(damage::now() + damage::look);
    *time = {damage::now() / sim::second, damage::now() % sim::second};
    return 0;
}

int nanosleep(const timespec *request, timespec *) {
    damage::advanceTo(damage::now() + nanoseconds(*request));
    return 0;
}

int clock_nanosleep(clockid_t, int flags, const timespec *request, timespec *) {
    damage::advanceTo((flags & TIMER_ABSTIME ? 0 : damage::now()) + nanoseconds(*request));
    return 0;
}
}
#pragma GCC visibility pop
