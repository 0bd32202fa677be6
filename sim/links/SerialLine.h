#pragma once

#include <deque>
#include <optional>

#include "sim/chip/Fault.h"
#include "sim/links/UsartProtocol.h"

namespace sim {

// Hands out the times at which bytes or frames that follow each other are through, exact over any number.
class Pacer {
public:
    // When `bits` that could start at `ready` are through; `late` holds them back, and all that follow.
    // Baud 0: at once, but never before their forerunners.
    Nanoseconds through(Nanoseconds ready, unsigned baud, Nanoseconds late = 0, unsigned bits = serialBits);

    static constexpr unsigned serialBits = 11; // of a byte: start, eight data bits, parity, stop

private:
    Nanoseconds free_ = 0;      // the line is free from then on
    Nanoseconds remainder_ = 0; // of the division by the rate, so that no fraction is lost
    unsigned baud_ = 0;
};

// The wires between a host and the chip: a byte takes its time on them, and what is to go wrong goes
// wrong there. Bytes are handed on at once, with the time at which they are due.
class SerialLine {
public:
    SerialLine(UsartProtocol &chip, Faults &faults) : chip_(chip), faults_(faults) {}

    // A byte leaves the host. `baud` is the rate of the line, 0 for no pace.
    void fromHost(std::uint8_t byte, Nanoseconds now, unsigned baud);

    // Bytes for the host, in the order in which they are due.
    std::deque<TimedByte> &toHost() { return toHost_; }
    const std::deque<TimedByte> &toHost() const { return toHost_; }

    // Unplugged by a fault. The value is the time until it is plugged in again, if ever.
    struct Hangup {
        std::optional<unsigned> replugMs;
    };
    const std::optional<Hangup> &hangup() const { return hangup_; }
    void replug();

private:
    void collect(unsigned baud);
    void deliver(std::uint8_t byte, Nanoseconds ready, unsigned baud);

    UsartProtocol &chip_;
    Faults &faults_;
    Pacer rx_;
    Pacer tx_;
    std::deque<TimedByte> toHost_;
    std::optional<Hangup> hangup_;
};

} // namespace sim
