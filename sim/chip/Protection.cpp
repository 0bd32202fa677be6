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
    : chip_(&chip), layout_(&layoutOf(chip)), options_(&options) {
    latch();
}

void Protection::latch() {
    const std::uint8_t byte = options_->item(layout_->accessByte);
    access_ = byte == accessOpen ? AccessLevel::open : AccessLevel::low;
    if (byte == accessHigh && chip_->levels)
        access_ = AccessLevel::high;
    epp_.clear();
    for (const std::size_t place : layout_->eppBytes)
        epp_.push_back(options_->item(place));
}

unsigned Protection::bits() const {
    return static_cast<unsigned>(layout_->eppBytes.size()) * bitsPerByte;
}

unsigned Protection::bitOf(unsigned sector) const {
    const unsigned narrow = sector / chip_->sectorsPerBit;
    if (!layout_->wideBits)
        return std::min(narrow, lastNarrowBit); // the last bit covers everything up to the end
    const unsigned boundary = wideBitBytes / chip_->sectorSize;
    return sector < boundary ? narrow : firstWideBit + (sector - boundary) / boundary;
}

bool Protection::bitProtects(unsigned bit) const {
    return (epp_[bit / bitsPerByte] >> (bit % bitsPerByte) & 1) == 0;
}

bool Protection::sectorProtected(unsigned sector) const {
    return bitProtects(bitOf(sector));
}

bool Protection::spimProtected() const {
    return !layout_->wideBits && bitProtects(lastNarrowBit);
}

Bytes Protection::withAccess(AccessLevel level) const {
    Bytes bytes = options_->compact();
    bytes[layout_->accessByte] = level == AccessLevel::high ? accessHigh : accessLow;
    return bytes;
}

Bytes Protection::withBitsProtected(const Bytes &numbers) const {
    Bytes bytes = options_->compact();
    for (const unsigned bit : numbers) {
        std::uint8_t &byte = bytes[layout_->eppBytes[bit / bitsPerByte]];
        byte = static_cast<std::uint8_t>(byte & ~(1U << (bit % bitsPerByte)));
    }
    return bytes;
}

Bytes Protection::withBitsOpen() const {
    Bytes bytes = options_->compact();
    for (const std::size_t place : layout_->eppBytes)
        bytes[place] = openByte;
    return bytes;
}

} // namespace sim
