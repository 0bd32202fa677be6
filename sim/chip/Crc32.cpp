#include "sim/chip/Crc32.h"

#include <array>

namespace sim {

namespace {

constexpr std::uint32_t reflectedPolynomial = 0xEDB88320;

std::array<std::uint32_t, 256> makeTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < table.size(); ++i) {
        std::uint32_t value = i;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1) != 0 ? (value >> 1) ^ reflectedPolynomial : value >> 1;
        table[i] = value;
    }
    return table;
}

} // namespace

std::uint32_t crc32(const std::uint8_t *data, std::size_t length, std::uint32_t before) {
    static const std::array<std::uint32_t, 256> table = makeTable();
    std::uint32_t crc = ~before;
    for (std::size_t i = 0; i < length; ++i)
        crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

} // namespace sim
