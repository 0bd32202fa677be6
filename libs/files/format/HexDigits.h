#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace files {

namespace hexdigits {

// Every pair of characters, as the 16-bit word that it makes in memory, to its byte value plus validBit;
// 0 for a pair that is not hexadecimal. Only the few rows of real digits are ever touched.
constexpr std::uint16_t validBit = 0x100;
constexpr char upperDigits[] = "0123456789ABCDEF";
constexpr char lowerDigits[] = "0123456789abcdef";

constexpr std::size_t pairIndex(char first, char second) {
    return static_cast<std::size_t>(first) | static_cast<std::size_t>(second) << 8;
}

constexpr std::array<std::uint16_t, 65536> makeDecodeTable() {
    std::array<std::uint16_t, 65536> table{};
    for (unsigned high = 0; high < 16; ++high)
        for (unsigned low = 0; low < 16; ++low)
            for (const char *h : {upperDigits, lowerDigits})
                for (const char *l : {upperDigits, lowerDigits})
                    table[pairIndex(h[high], l[low])] = static_cast<std::uint16_t>(validBit | high << 4 | low);
    return table;
}

constexpr std::array<std::uint16_t, 256> makeEncodeTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned value = 0; value < 256; ++value)
        table[value] = static_cast<std::uint16_t>(pairIndex(upperDigits[value >> 4], upperDigits[value & 15]));
    return table;
}

extern const std::array<std::uint16_t, 65536> decodeTable;
extern const std::array<std::uint16_t, 256> encodeTable;

} // namespace hexdigits

// The byte that two characters stand for, plus hexdigits::validBit; 0 if one is not a digit.
inline unsigned decodeByte(const unsigned char *text) {
    std::uint16_t pair;
    std::memcpy(&pair, text, 2);
    return hexdigits::decodeTable[pair];
}

// Sixteen bytes at a time where the processor can; what is left over goes through the tables.
namespace hexdigits {

constexpr std::size_t blockSize = 16;

#ifdef __SSE2__

// Sixteen characters to their values in 16-bit lanes; `valid` loses the bytes that are no digits.
inline __m128i decodeLanes(const unsigned char *text, __m128i &valid) {
    const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text));
    const __m128i digit = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
    const __m128i letter = _mm_sub_epi8(_mm_or_si128(characters, _mm_set1_epi8(0x20)), _mm_set1_epi8('a'));
    const __m128i isDigit = _mm_cmpeq_epi8(_mm_min_epu8(digit, _mm_set1_epi8(9)), digit);
    const __m128i isLetter = _mm_cmpeq_epi8(_mm_min_epu8(letter, _mm_set1_epi8(5)), letter);
    valid = _mm_and_si128(valid, _mm_or_si128(isDigit, isLetter));
    const __m128i values =
        _mm_or_si128(_mm_and_si128(digit, isDigit), _mm_and_si128(_mm_add_epi8(letter, _mm_set1_epi8(10)), isLetter));
    // The first character of a pair is in the low byte of its lane.
    return _mm_or_si128(_mm_and_si128(_mm_slli_epi16(values, 4), _mm_set1_epi16(0xF0)), _mm_srli_epi16(values, 8));
}

inline unsigned sumOf(__m128i bytes) {
    const __m128i halves = _mm_sad_epu8(bytes, _mm_setzero_si128());
    return static_cast<unsigned>(_mm_cvtsi128_si32(halves) + _mm_extract_epi16(halves, 4));
}

inline bool decodeBlock(const unsigned char *text, unsigned char *bytes, unsigned &sum) {
    __m128i valid = _mm_set1_epi8(-1);
    const __m128i low = decodeLanes(text, valid);
    const __m128i block = _mm_packus_epi16(low, decodeLanes(text + blockSize, valid));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(bytes), block);
    sum += sumOf(block);
    return _mm_movemask_epi8(valid) == 0xFFFF;
}

// Values below 16 to upper-case digits.
inline __m128i digitsOf(__m128i values) {
    const __m128i letters = _mm_and_si128(_mm_cmpgt_epi8(values, _mm_set1_epi8(9)), _mm_set1_epi8('A' - '0' - 10));
    return _mm_add_epi8(_mm_add_epi8(values, _mm_set1_epi8('0')), letters);
}

inline void encodeBlock(const unsigned char *bytes, char *text, unsigned &sum) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes));
    const __m128i nibble = _mm_set1_epi8(0x0F);
    const __m128i high = digitsOf(_mm_and_si128(_mm_srli_epi16(block, 4), nibble));
    const __m128i low = digitsOf(_mm_and_si128(block, nibble));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(text), _mm_unpacklo_epi8(high, low));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(text + blockSize), _mm_unpackhi_epi8(high, low));
    sum += sumOf(block);
}

#else

inline bool decodeBlock(const unsigned char *text, unsigned char *bytes, unsigned &sum) {
    unsigned valid = validBit;
    for (std::size_t i = 0; i < blockSize; ++i) {
        const unsigned value = decodeByte(text + 2 * i);
        valid &= value;
        sum += value;
        bytes[i] = static_cast<unsigned char>(value);
    }
    return valid != 0;
}

inline void encodeBlock(const unsigned char *bytes, char *text, unsigned &sum) {
    for (std::size_t i = 0; i < blockSize; ++i) {
        std::memcpy(text + 2 * i, &encodeTable[bytes[i]], 2);
        sum += bytes[i];
    }
}

#endif

} // namespace hexdigits

// Decodes `count` bytes and adds them to `sum`, of which the low eight bits count. False if a
// character is not a digit.
inline bool decodeBytes(const unsigned char *text, std::size_t count, unsigned char *bytes, unsigned &sum) {
    std::size_t i = 0;
    for (; i + hexdigits::blockSize <= count; i += hexdigits::blockSize)
        if (!hexdigits::decodeBlock(text + 2 * i, bytes + i, sum))
            return false;
    unsigned valid = hexdigits::validBit;
    for (; i < count; ++i) {
        const unsigned value = decodeByte(text + 2 * i);
        valid &= value;
        sum += value;
        bytes[i] = static_cast<unsigned char>(value);
    }
    return valid != 0;
}

// Writes the bytes as digits to `text` and adds them to `sum`; answers the end of the text.
inline char *encodeBytes(const unsigned char *bytes, std::size_t count, char *text, unsigned &sum) {
    std::size_t i = 0;
    for (; i + hexdigits::blockSize <= count; i += hexdigits::blockSize)
        hexdigits::encodeBlock(bytes + i, text + 2 * i, sum);
    for (; i < count; ++i) {
        std::memcpy(text + 2 * i, &hexdigits::encodeTable[bytes[i]], 2);
        sum += bytes[i];
    }
    return text + 2 * count;
}

} // namespace files
