#pragma once

#include <deque>
#include <optional>

#include "sim/chip/Fault.h"
#include "sim/links/CanProtocol.h"
#include "sim/links/Passage.h"

namespace sim {

// The bus between a host and the chip: a frame takes its time on it, and what is to go wrong goes wrong
// there. Frames are handed on at once, with the time at which they are due.
class CanLine {
public:
    CanLine(CanProtocol &chip, Faults &faults, bool pace)
        : m_chip(chip), m_pace(pace), m_rx(Direction::rx, faults), m_tx(Direction::tx, faults) {}

    // What became of a frame of the host.
    struct Sent {
        Nanoseconds through;
        bool noise = false; // the chip has another speed
    };

    // A frame leaves the host, at its speed in bits per second; 0 where that cannot be told.
    Sent fromHost(const CanFrame &frame, Nanoseconds now, unsigned speed);

    // Frames for the host, in the order in which they are due.
    std::deque<TimedFrame> &toHost() { return m_toHost; }
    const std::deque<TimedFrame> &toHost() const { return m_toHost; }

    const std::optional<Hangup> &hangup() const { return m_hangup; }
    void replug();

private:
    Lane::Ride carry(Lane &lane, CanFrame &frame, Nanoseconds ready, unsigned speed);
    void deliver(TimedFrame timed);

    CanProtocol &m_chip;
    bool m_pace;
    Lane m_rx;
    Lane m_tx;
    std::deque<TimedFrame> m_toHost;
    std::optional<Hangup> m_hangup;
};

// Bit times of a frame: those of its fields, the pause after it, and one stuff bit for ten bits that can
// be stuffed, which is more than random data and less than the worst need.
unsigned bitsOf(const CanFrame &frame);

} // namespace sim
