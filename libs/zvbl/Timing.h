#pragma once

#include <chrono>

#include "libs/zvbl/wire/Wire.h"

namespace zvbl {

using Clock = std::chrono::steady_clock;
using Duration = std::chrono::nanoseconds;
using TimePoint = std::chrono::time_point<Clock, Duration>;

// The time limits of getting in step; docs/wire-protocol.md tells how they are used. Tests shorten them.
struct Timing {
    Duration frameLimit = std::chrono::milliseconds(wire::frameLimitMs); // the chip drops a command after it
    Duration quiet = std::chrono::milliseconds(20);                      // nothing late is to come after it
    Duration opening = std::chrono::milliseconds(100);                   // CAN: from one opening frame to the next
    Duration prompt = std::chrono::milliseconds(5);      // USART: the first opening byte is answered at once,
    Duration promptQuiet = std::chrono::milliseconds(3); // and then this is quiet enough
    Duration believed = std::chrono::seconds(1);         // what was heard before it was needed
    Duration longestPoll = std::chrono::minutes(10);     // DFU: whatever a device asks for
};

// What links that are opened from now on use. For tests.
void setTiming(const Timing &timing);
Timing timing();

} // namespace zvbl
