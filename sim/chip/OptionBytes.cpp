#include "sim/chip/OptionBytes.h"

#include "sim/chip/Protection.h"

namespace sim {

namespace {
constexpr std::size_t pairLength = 2;
constexpr std::uint8_t blank = 0xFF;

std::uint8_t complement(std::uint8_t byte) {
    return static_cast<std::uint8_t>(~byte);
}
} // namespace

OptionBytes::OptionBytes(const ChipFacts &chip, Faults &faults)
    : layout_(&layoutOf(chip)), cells_(chip.userDataLength * pairLength, CellKind::options, pairLength, faults) {
    const Bytes content = factory();
    for (std::size_t i = 0; i < content.size(); ++i) {
        cells_.raw()[i * pairLength] = content[i];
        cells_.raw()[i * pairLength + 1] = complement(content[i]);
    }
}

std::uint8_t OptionBytes::item(std::size_t i) const {
    const std::uint8_t *pair = cells_.data() + i * pairLength;
    return pair[1] == complement(pair[0]) ? pair[0] : blank;
}

Bytes OptionBytes::compact() const {
    Bytes bytes(cells_.size() / pairLength);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = item(i);
    return bytes;
}

Bytes OptionBytes::factory() const {
    Bytes bytes(cells_.size() / pairLength, blank);
    bytes[layout_->accessByte] = accessOpen;
    return bytes;
}

bool OptionBytes::write(const Bytes &compact) {
    Bytes pairs;
    pairs.reserve(compact.size() * pairLength);
    for (const std::uint8_t byte : compact) {
        pairs.push_back(byte);
        pairs.push_back(complement(byte));
    }
    cells_.erase(0, cells_.size());
    return cells_.program(0, pairs);
}

} // namespace sim
