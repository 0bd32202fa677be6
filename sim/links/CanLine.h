#pragma once

#include <deque>
#include <optional>

#include "sim/chip/Fault.h"
#include "sim/links/CanProtocol.h"
#include "sim/links/SerialLine.h"

namespace sim {

// The bus between a host and the chip: a frame takes its time on it, and what is to go wrong goes wrong
// there. Frames are handed on at once, with the time at which they are due.
class CanLine {
public:
    CanLine(CanProtocol &chip, Faults &faults, bool pace) : chip_(chip), faults_(faults), pace_(pace) {}

    // What became of a frame of the host.
    struct Passage {
        Nanoseconds through;
        bool noise = false; // the chip has another speed
    };

    // A frame leaves the host, at its speed in bits per second; 0 where that cannot be told.
    Passage fromHost(const CanFrame &frame, Nanoseconds now, unsigned speed);

    // Frames for the host, in the order in which they are due.
    std::deque<TimedFrame> &toHost() { return toHost_; }

    // Unplugged by a fault. The value is the time until it is plugged in again, if ever.
    using Hangup = SerialLine::Hangup;
    const std::optional<Hangup> &hangup() const { return hangup_; }
    void replug();

private:
    bool befall(CanFrame &frame, Direction direction, ByteEffect &effect);
    void deliver(TimedFrame timed);

    CanProtocol &chip_;
    Faults &faults_;
    bool pace_;
    Pacer rx_;
    Pacer tx_;
    std::deque<TimedFrame> toHost_;
    std::optional<Hangup> hangup_;
};

// Bit times of a frame: those of its fields, the pause behind it, and one stuff bit for ten bits that can
// be stuffed, which is more than random data and less than the worst need.
unsigned bitsOf(const CanFrame &frame);

} // namespace sim
