#include "sim/chip/Protection.h"

#include <algorithm>

namespace sim {

namespace {
constexpr unsigned lastNarrowBit = 31;
constexpr unsigned firstWideBit = 32;
constexpr unsigned wideBitBytes = 128 * 1024;
constexpr unsigned bitsPerByte = 8;
constexpr std::uint8_t openByte = 0xFF;
} // namespace

Protection::Protection(const ChipFacts &chip, const OptionBytes &options)
    : m_chip(&chip), m_layout(&layoutOf(chip)), m_options(&options) {
    latch();
}

void Protection::latch() {
    const std::uint8_t byte = m_options->item(m_layout->accessByte);
    m_access = byte == accessOpen ? AccessLevel::open : AccessLevel::low;
    if (byte == accessHigh && m_chip->levels)
        m_access = AccessLevel::high;
    m_epp.clear();
    for (const std::size_t place : m_layout->eppBytes)
        m_epp.push_back(m_options->item(place));
}

unsigned Protection::bits() const {
    return static_cast<unsigned>(m_layout->eppBytes.size()) * bitsPerByte;
}

unsigned Protection::bitOf(unsigned sector) const {
    const unsigned narrow = sector / m_chip->sectorsPerBit;
    if (!m_layout->wideBits)
        return std::min(narrow, lastNarrowBit); // the last bit covers everything up to the end
    const unsigned boundary = wideBitBytes / m_chip->sectorSize;
    return sector < boundary ? narrow : firstWideBit + (sector - boundary) / boundary;
}

bool Protection::bitProtects(unsigned bit) const {
    return (m_epp[bit / bitsPerByte] >> (bit % bitsPerByte) & 1) == 0;
}

bool Protection::sectorProtected(unsigned sector) const {
    return bitProtects(bitOf(sector));
}

bool Protection::spimProtected() const {
    return !m_layout->wideBits && bitProtects(lastNarrowBit);
}

Bytes Protection::withAccess(AccessLevel level) const {
    Bytes bytes = m_options->compact();
    bytes[m_layout->accessByte] = level == AccessLevel::high ? accessHigh : accessLow;
    return bytes;
}

Bytes Protection::withBitsProtected(const Bytes &numbers) const {
    Bytes bytes = m_options->compact();
    for (const unsigned bit : numbers) {
        std::uint8_t &byte = bytes[m_layout->eppBytes[bit / bitsPerByte]];
        byte = static_cast<std::uint8_t>(byte & ~(1U << (bit % bitsPerByte)));
    }
    return bytes;
}

Bytes Protection::withBitsOpen() const {
    Bytes bytes = m_options->compact();
    for (const std::size_t place : m_layout->eppBytes)
        bytes[place] = openByte;
    return bytes;
}

} // namespace sim
