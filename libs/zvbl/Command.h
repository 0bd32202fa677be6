#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "libs/zvbl/Bytes.h"

namespace zvbl {

// What protects a group of bytes: the XOR of all of them, or the complement of the only one.
enum class Check { sum, complement };

struct Group {
    Bytes bytes; // without the count and the check byte
    Check check = Check::sum;
    bool counted = false; // a count byte goes before it: of the bytes; in a group without any, of those asked for
};

// What the chip sends after its last ACK.
struct Reply {
    enum class End { nothing, sum, ack };

    bool counted = false; // the first byte b announces b + 1 further ones
    std::size_t size = 0; // without the end; not counted only
    End end = End::nothing;
};

// One command as every link carries it: opcode, groups of arguments, reply. How a link marks, checks
// and answers them is the matter of its framing.
struct Command {
    std::uint8_t opcode = 0;
    std::vector<Group> groups{};
    Reply reply{};
    bool packet = false; // READ or WRITE, of which many follow each other: no pause between its groups
    bool more = false;   // another packet follows at once: no pause after this one either
};

// Whether the chip after this command, when it is done, starts anew or runs its program.
bool endsBootloader(std::uint8_t opcode);

// Whether all cells hold after this command what they held before.
bool leavesCells(std::uint8_t opcode);

// Appends a number, highest byte first.
inline void append16(Bytes &bytes, std::uint32_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

inline void append32(Bytes &bytes, std::uint32_t value) {
    append16(bytes, value >> 16);
    append16(bytes, value);
}

// The number in four bytes, highest byte first.
inline std::uint32_t number32(const std::uint8_t *bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

inline Group addressGroup(std::uint32_t address) {
    Group group;
    append32(group.bytes, address);
    return group;
}

} // namespace zvbl
