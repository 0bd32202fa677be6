#include "sim/chip/Spim.h"

namespace sim {

namespace {
constexpr std::uint8_t firstType = 0x90;
constexpr std::uint8_t secondType = 0x91;
} // namespace

Outcome Spim::enable(std::uint8_t type, std::uint32_t size, std::uint32_t encryptedFrom) {
    if (type != firstType && type != secondType)
        return Outcome::refuse("not a SPIM type");
    if (size > m_cells.size() || m_cells.size() == 0)
        return Outcome::refuse("the board's SPIM has " + std::to_string(m_cells.size()) + " bytes");
    m_enabledSize = size == 0 ? m_cells.size() : size;
    m_encryptedFrom = encryptedFrom;
    return {};
}

Outcome Spim::remap(std::uint8_t pins) {
    if (pins > 1)
        return Outcome::refuse("no such remap");
    m_remap = pins;
    return {};
}

void Spim::reset() {
    m_enabledSize = 0;
    m_encryptedFrom = 0;
    m_remap = 0;
}

} // namespace sim
