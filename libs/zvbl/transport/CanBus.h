#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "libs/zvbl/Timing.h"
#include "libs/zvbl/transport/Transport.h"

namespace zvbl {

// A data frame with an 11-bit identifier.
struct CanFrame {
    std::uint16_t id = 0;
    std::uint8_t size = 0; // of the data, up to 8
    std::array<std::uint8_t, 8> data{};
};

// A CAN bus, however it is reached. Frames keep their order, and own ones are not heard. A bus that fails
// for good - unplugged, taken down, bus-off - is gone in every call until it is closed or gets another rate.
class CanBus : public Transport {
public:
    // Hands a frame over, and waits for room if there is none. noAnswer: none until the deadline, or the
    // frame was refused or lost on the way to the bus.
    virtual Status send(const CanFrame &frame, TimePoint deadline) = 0;

    // Takes the next frame from a chip. noAnswer: none until the deadline; one that is past makes it a look
    // without waiting.
    virtual Status receive(CanFrame &frame, TimePoint deadline) = 0;

    // Bits per second. 0: the bus has no rate that could be read or set, as a virtual one.
    virtual unsigned bitRate() const = 0;
    virtual Status mayChangeBitRate() = 0; // without doing it
    virtual Status setBitRate(unsigned bitsPerSecond) = 0;

    // Called when a chip is silent: puts into the trace what the bus knows about it.
    virtual void explain() {}

    // What a frame takes at most, on its whole way. Where nobody can tell the rate, at a chip's start speed.
    virtual Duration frameTime(std::size_t dataBytes) const {
        // Frame, gap, and a bit stuffed in after every four of what can be stuffed.
        const std::size_t bits = 47 + 8 * dataBytes + (33 + 8 * dataBytes) / 4;
        return std::chrono::nanoseconds(bits * 1000000000ULL / (bitRate() ? bitRate() : wire::canStartSpeed));
    }
};

} // namespace zvbl
