#pragma once

#include <deque>

#include "sim/links/Passage.h"
#include "sim/links/UsartProtocol.h"

namespace sim {

// The wires between a host and the chip: a byte takes its time on them, and what is to go wrong goes
// wrong there. Bytes are handed on at once, with the time at which they are due.
class UsartLine {
public:
    UsartLine(UsartProtocol &chip, Faults &faults)
        : m_chip(chip), m_rx(Direction::rx, faults), m_tx(Direction::tx, faults) {}

    // A byte leaves the host. `baud` is the rate of the line, 0 for no pace.
    void fromHost(std::uint8_t byte, Nanoseconds now, unsigned baud);

    // Bytes for the host, in the order in which they are due.
    std::deque<TimedByte> &toHost() { return m_toHost; }
    const std::deque<TimedByte> &toHost() const { return m_toHost; }

    // The last so many of them, two at least, are due sooner: each a little more than the one before it, the last one
    // by that time.
    void hasten(std::size_t count, Nanoseconds time);

    const std::optional<Hangup> &hangup() const { return m_hangup; }
    void replug();

private:
    void collect(unsigned baud);
    void deliver(const TimedByte &timed, unsigned baud);

    UsartProtocol &m_chip;
    Lane m_rx;
    Lane m_tx;
    std::deque<TimedByte> m_toHost;
    std::optional<Hangup> m_hangup;
};

} // namespace sim
