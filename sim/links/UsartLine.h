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
        : chip_(chip), rx_(Direction::rx, faults), tx_(Direction::tx, faults) {}

    // A byte leaves the host. `baud` is the rate of the line, 0 for no pace.
    void fromHost(std::uint8_t byte, Nanoseconds now, unsigned baud);

    // Bytes for the host, in the order in which they are due.
    std::deque<TimedByte> &toHost() { return toHost_; }
    const std::deque<TimedByte> &toHost() const { return toHost_; }

    const std::optional<Hangup> &hangup() const { return hangup_; }
    void replug();

private:
    void collect(unsigned baud);
    void deliver(const TimedByte &timed, unsigned baud);

    UsartProtocol &chip_;
    Lane rx_;
    Lane tx_;
    std::deque<TimedByte> toHost_;
    std::optional<Hangup> hangup_;
};

} // namespace sim
