#pragma once

#include <optional>
#include <vector>

#include "sim/chip/ChipTable.h"
#include "sim/chip/Fault.h"
#include "sim/chip/Time.h"

namespace sim {

// Unplugged by a fault. The value is the time until it is plugged in again, if ever.
struct Hangup {
    std::optional<unsigned> replugMs;
};

// What has become of bytes that went by together.
struct Passage {
    Bytes bytes;       // what is left: lost ones are missing, doubled ones stand twice
    Bytes inPlace;     // every byte where it was, damaged or not
    bool lost = false; // one of them was
    bool doubled = false;
    bool damaged = false;
    Nanoseconds late = 0;
    std::optional<Hangup> hangup; // in the place of the next byte; nothing followed
};

// The one place where faults befall bytes: each is counted as it goes by.
Passage pass(const Bytes &bytes, Direction direction, Faults &faults);

// Hands out the times at which bytes or frames that follow each other are through, exact over any number.
class Pacer {
public:
    // When `bits` that could start at `ready` are through; `late` holds them back, and all that follow.
    // Baud 0: at once, but never before their forerunners.
    Nanoseconds through(Nanoseconds ready, unsigned baud, Nanoseconds late = 0, unsigned bits = serialBits);

    // The line is free so much sooner.
    void gain(Nanoseconds time) { m_free -= time; }

    static constexpr unsigned serialBits = 11; // of a byte: start, eight data bits, parity, stop

private:
    Nanoseconds m_free = 0;      // the line is free from then on
    Nanoseconds m_remainder = 0; // of the division by the rate, so that no fraction is lost
    unsigned m_baud = 0;
};

// One direction of a line.
class Lane {
public:
    Lane(Direction direction, Faults &faults) : m_direction(direction), m_faults(faults) {}

    struct Ride {
        Passage passage;
        std::vector<Nanoseconds> through; // when it is there: twice for what is doubled, never after a hang-up
    };

    // Bytes that travel as one, from `ready` on, and take `bits` at that rate; 0 for no time.
    Ride carry(const Bytes &bytes, Nanoseconds ready, unsigned baud, unsigned bits = Pacer::serialBits);

    // The same for what no fault befalls.
    Nanoseconds carryUnharmed(Nanoseconds ready, unsigned baud, unsigned bits);

    void gain(Nanoseconds time) { m_pacer.gain(time); }

    void replug() { m_pacer = Pacer{}; }

private:
    Direction m_direction;
    Faults &m_faults;
    Pacer m_pacer;
};

} // namespace sim
