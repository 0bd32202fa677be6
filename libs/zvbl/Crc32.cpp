#include "libs/zvbl/Crc32.h"

#include <array>

namespace zvbl {
namespace {

constexpr std::uint32_t polynomial = 0xEDB88320; // 04C11DB7, lowest bit first

constexpr std::array<std::uint32_t, 256> makeTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t word = i;
        for (int bit = 0; bit < 8; ++bit)
            word = word >> 1 ^ (word & 1 ? polynomial : 0);
        table[i] = word;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> table = makeTable();

} // namespace

std::uint32_t crc32(const std::uint8_t *data, std::size_t length) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = 0; i < length; ++i)
        crc = table[(crc ^ data[i]) & 0xFF] ^ crc >> 8;
    return ~crc;
}

} // namespace zvbl
