#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace files {

namespace hexdigits {

// Every pair of characters, as the 16-bit word that it makes in memory, to its byte value plus Valid;
// 0 for a pair that is not hexadecimal. Only the few rows of real digits are ever touched.
constexpr std::uint16_t Valid = 0x100;
constexpr char Upper[] = "0123456789ABCDEF";
constexpr char Lower[] = "0123456789abcdef";

constexpr std::size_t pairIndex(char first, char second) {
    return static_cast<std::size_t>(first) | static_cast<std::size_t>(second) << 8;
}

constexpr std::array<std::uint16_t, 65536> makeDecodeTable() {
    std::array<std::uint16_t, 65536> table{};
    for (unsigned high = 0; high < 16; ++high)
        for (unsigned low = 0; low < 16; ++low)
            for (const char *h : {Upper, Lower})
                for (const char *l : {Upper, Lower})
                    table[pairIndex(h[high], l[low])] = static_cast<std::uint16_t>(Valid | high << 4 | low);
    return table;
}

constexpr std::array<std::uint16_t, 256> makeEncodeTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned value = 0; value < 256; ++value)
        table[value] = static_cast<std::uint16_t>(pairIndex(Upper[value >> 4], Upper[value & 15]));
    return table;
}

extern const std::array<std::uint16_t, 65536> DecodeTable;
extern const std::array<std::uint16_t, 256> EncodeTable;

} // namespace hexdigits

// The byte that two characters stand for, plus hexdigits::Valid; 0 if one is not a digit.
inline unsigned decodeByte(const unsigned char *text) {
    std::uint16_t pair;
    std::memcpy(&pair, text, 2);
    return hexdigits::DecodeTable[pair];
}

// Decodes `count` bytes and adds them to `sum`, of which the low eight bits count. False if a
// character is not a digit.
inline bool decodeBytes(const unsigned char *text, std::size_t count, unsigned char *bytes, unsigned &sum) {
    unsigned valid = hexdigits::Valid;
    unsigned total = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned value = decodeByte(text + 2 * i);
        valid &= value;
        total += value;
        bytes[i] = static_cast<unsigned char>(value);
    }
    sum += total;
    return valid != 0;
}

// Writes the bytes as digits to `text` and adds them to `sum`; answers the end of the text.
inline char *encodeBytes(const unsigned char *bytes, std::size_t count, char *text, unsigned &sum) {
    for (std::size_t i = 0; i < count; ++i) {
        std::memcpy(text + 2 * i, &hexdigits::EncodeTable[bytes[i]], 2);
        sum += bytes[i];
    }
    return text + 2 * count;
}

} // namespace files
