#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// CRC-32 of IEEE 802.3, which FIRMWARE_CRC answers and other programs print of a file.

namespace crc32tables {

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

} // namespace crc32tables

inline std::uint32_t crc32(const std::uint8_t *data, std::size_t length) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::size_t i = 0; i < length; ++i)
        crc = crc32tables::table[(crc ^ data[i]) & 0xFF] ^ crc >> 8;
    return ~crc;
}
