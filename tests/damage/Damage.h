#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "sim/chip/Time.h"

namespace damage {

// Silence and a port that is gone last from the unit on, the others befall it.
enum class Kind { bit, burst, lost, doubled, swapped, late, silent, gone };

struct KindRow {
    Kind kind;
    const char *name;
    bool ofFrames; // befalls whole frames too, where a bus checks what is in them
};

// What a line can do to bytes and frames.
constexpr KindRow kinds[] = {
    {Kind::bit, "bit", false},        {Kind::burst, "burst", false},    {Kind::lost, "lost", true},
    {Kind::doubled, "doubled", true}, {Kind::swapped, "swapped", true}, {Kind::late, "late", true},
};

// One direction of a line: counts the units, bytes or frames, that go by, and harms those whose turn it is.
class Lane {
public:
    // `places` are numbers of units, from 0, lowest first.
    void harm(Kind kind, std::vector<std::size_t> places, std::uint32_t seed);

    // What comes out at the other end, in that order.
    struct Unit {
        std::size_t index;     // of the unit that went in
        std::uint8_t mask;     // what is XORed into it
        sim::Nanoseconds late; // it, and all that follow
    };
    std::vector<Unit> pass(std::size_t count);

    std::size_t passed() const { return m_passed; }
    bool isGone() const { return m_ended && m_kind == Kind::gone; } // the port, with the line

private:
    void one(std::size_t index, bool last, std::vector<Unit> &units);
    void harmLast(std::vector<Unit> &units);
    std::size_t random(std::size_t from, std::size_t to);
    void changeBits(Unit &unit);

    Kind m_kind = Kind::bit;
    std::vector<std::size_t> m_places;
    std::mt19937 m_random;
    std::size_t m_passed = 0;
    std::size_t m_next = 0;  // of the places
    std::size_t m_burst = 0; // units of it that are still to come
    sim::Nanoseconds m_burstEnd = 0;
    bool m_ended = false; // nothing comes through any more
    bool m_swap = false;  // the unit that came last changes places with the next one
};

} // namespace damage
