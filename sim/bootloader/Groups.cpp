#include "sim/bootloader/Groups.h"

#include <numeric>

namespace sim {

namespace {
std::uint8_t xorOf(const Bytes &bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), std::uint8_t{0},
                           [](std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>(a ^ b); });
}
} // namespace

std::size_t countedByByte(const Bytes &arrived) {
    constexpr std::size_t frame = 2;
    return arrived.empty() ? 1 : arrived[0] + std::size_t{1} + frame;
}

std::size_t countedByTwo(const Bytes &arrived) {
    constexpr std::size_t frame = 3;
    return arrived.size() < 2 ? 2 : number16(arrived, 0) + std::size_t{1} + frame;
}

bool xorSound(const Bytes &group) {
    return xorOf(group) == 0;
}

bool complementSound(const Bytes &group) {
    return (group[0] ^ group[1]) == 0xFF;
}

std::uint16_t number16(const Bytes &group, std::size_t at) {
    return static_cast<std::uint16_t>(group[at] << 8 | group[at + 1]);
}

std::uint32_t number32(const Bytes &group, std::size_t at) {
    return static_cast<std::uint32_t>(number16(group, at)) << 16 | number16(group, at + 2);
}

void append16(Bytes &bytes, std::uint16_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

void append32(Bytes &bytes, std::uint32_t value) {
    append16(bytes, static_cast<std::uint16_t>(value >> 16));
    append16(bytes, static_cast<std::uint16_t>(value));
}

void appendXor(Bytes &bytes) {
    bytes.push_back(xorOf(bytes));
}

Bytes payload(const Bytes &group, std::size_t head) {
    return Bytes(group.begin() + static_cast<std::ptrdiff_t>(head), group.end() - 1);
}

} // namespace sim
