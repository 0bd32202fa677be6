#include "sim/chip/Protection.h"

#include <algorithm>

namespace sim {

namespace {
constexpr unsigned lastNarrowGroup = 31;
constexpr unsigned firstWideGroup = 32;
constexpr unsigned wideGroupBytes = 128 * 1024;
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

unsigned Protection::groups() const {
    return static_cast<unsigned>(layout_->eppBytes.size()) * bitsPerByte;
}

unsigned Protection::groupOf(unsigned sector) const {
    const unsigned narrow = sector / chip_->sectorsPerGroup;
    if (!layout_->wideGroups)
        return std::min(narrow, lastNarrowGroup); // the last bit covers everything up to the end
    const unsigned boundary = wideGroupBytes / chip_->sectorSize;
    return sector < boundary ? narrow : firstWideGroup + (sector - boundary) / boundary;
}

bool Protection::groupProtected(unsigned group) const {
    return (epp_[group / bitsPerByte] >> (group % bitsPerByte) & 1) == 0;
}

bool Protection::sectorProtected(unsigned sector) const {
    return groupProtected(groupOf(sector));
}

bool Protection::spimProtected() const {
    return !layout_->wideGroups && groupProtected(lastNarrowGroup);
}

Bytes Protection::withAccess(AccessLevel level) const {
    Bytes bytes = options_->compact();
    bytes[layout_->accessByte] = level == AccessLevel::high ? accessHigh : accessLow;
    return bytes;
}

Bytes Protection::withGroupsProtected(const Bytes &groupNumbers) const {
    Bytes bytes = options_->compact();
    for (const unsigned group : groupNumbers) {
        std::uint8_t &byte = bytes[layout_->eppBytes[group / bitsPerByte]];
        byte = static_cast<std::uint8_t>(byte & ~(1U << (group % bitsPerByte)));
    }
    return bytes;
}

Bytes Protection::withGroupsOpen() const {
    Bytes bytes = options_->compact();
    for (const std::size_t place : layout_->eppBytes)
        bytes[place] = openByte;
    return bytes;
}

} // namespace sim
