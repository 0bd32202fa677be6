#pragma once

#include "sim/chip/ChipTable.h"

namespace sim {

// The shapes that groups of bytes have on the wire: how long one is, and whether its checksum is right.

template <std::size_t Count>
std::size_t exactly(const Bytes &) {
    return Count;
}

std::size_t countedByByte(const Bytes &arrived); // N-1, N bytes, xor
std::size_t countedByTwo(const Bytes &arrived);  // N-1 in two bytes, N bytes, xor

bool xorSound(const Bytes &group);        // the XOR of everything is 0
bool complementSound(const Bytes &group); // a byte and its complement

std::uint16_t number16(const Bytes &group, std::size_t at); // highest byte first
std::uint32_t number32(const Bytes &group, std::size_t at);
void append16(Bytes &bytes, std::uint16_t value);
void append32(Bytes &bytes, std::uint32_t value);
void appendXor(Bytes &bytes);

// Without the first `head` bytes and the last one.
Bytes payload(const Bytes &group, std::size_t head);

} // namespace sim
