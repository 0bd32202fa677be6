#pragma once

#include <cstdint>

#include "sim/chip/ChipTable.h"
#include "sim/chip/Time.h"

namespace sim {

// A frame of CAN 2.0.
struct CanFrame {
    std::uint32_t id = 0;
    Bytes data;            // 0 to 8; of a remote frame only their number means something
    bool extended = false; // the identifier has 29 bits, not 11
    bool remote = false;
};

// A frame from the chip.
struct TimedFrame {
    CanFrame frame;
    Nanoseconds at = 0;      // it may leave from then on; after the bus: it has arrived
    unsigned speed = 0;      // bits per second at which the chip sends it
    unsigned speedAfter = 0; // the chip changes to that speed when it has left; 0 for no change
};

} // namespace sim
