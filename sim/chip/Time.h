#pragma once

#include <cstdint>

namespace sim {

// Time on a monotonic clock, in nanoseconds. The chip never looks at a clock: whoever feeds it says when.
using Nanoseconds = std::int64_t;

constexpr Nanoseconds microsecond = 1000;
constexpr Nanoseconds millisecond = 1000 * microsecond;
constexpr Nanoseconds second = 1000 * millisecond;

struct TimedByte {
    std::uint8_t byte;
    Nanoseconds at;
};

} // namespace sim
