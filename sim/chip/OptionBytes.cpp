#include "sim/chip/OptionBytes.h"

namespace sim {

namespace {
constexpr std::size_t pairLength = 2;
constexpr std::uint8_t blank = 0xFF;

std::uint8_t complement(std::uint8_t byte) {
    return static_cast<std::uint8_t>(~byte);
}
} // namespace

OptionBytes::OptionBytes(const ChipFacts &chip, Faults &faults)
    : m_layout(&layoutOf(chip)), m_cells(chip.userDataLength * pairLength, CellKind::options, pairLength, faults) {
    const Bytes content = factory();
    for (std::size_t i = 0; i < content.size(); ++i) {
        m_cells.raw()[i * pairLength] = content[i];
        m_cells.raw()[i * pairLength + 1] = complement(content[i]);
    }
}

std::uint8_t OptionBytes::item(std::size_t i) const {
    const std::uint8_t *pair = m_cells.data() + i * pairLength;
    return pair[1] == complement(pair[0]) ? pair[0] : blank;
}

Bytes OptionBytes::compact() const {
    Bytes bytes(m_cells.size() / pairLength);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = item(i);
    return bytes;
}

Bytes OptionBytes::factory() const {
    Bytes bytes(m_cells.size() / pairLength, blank);
    bytes[m_layout->accessByte] = accessOpen;
    return bytes;
}

bool OptionBytes::write(const Bytes &compact) {
    Bytes pairs;
    pairs.reserve(compact.size() * pairLength);
    for (const std::uint8_t byte : compact) {
        pairs.push_back(byte);
        pairs.push_back(complement(byte));
    }
    return m_cells.erase(0, m_cells.size(), m_cells.size()) && m_cells.program(0, pairs);
}

} // namespace sim
