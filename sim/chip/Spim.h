#pragma once

#include "sim/chip/Cells.h"

namespace sim {

// The SPI flash on the board, behind the chip's SPIM interface. Out of reach until it is enabled.
class Spim {
public:
    // `size` in bytes is what the board carries; 0 for none.
    Spim(std::size_t size, Faults &faults) : m_cells(size, CellKind::flash, 1, faults) {}

    // Types 90 and 91; `size` is the part of the flash that is to be used; `encryptedFrom` an offset, 0 for none.
    Outcome enable(std::uint8_t type, std::uint32_t size, std::uint32_t encryptedFrom);
    Outcome remap(std::uint8_t pins);
    void reset();

    std::uint32_t enabledSize() const { return m_enabledSize; }
    std::uint32_t encryptedFrom() const { return m_encryptedFrom; }
    std::uint8_t remapped() const { return m_remap; }

    Cells &cells() { return m_cells; }
    const Cells &cells() const { return m_cells; }

private:
    Cells m_cells;
    std::uint32_t m_enabledSize = 0;
    std::uint32_t m_encryptedFrom = 0;
    std::uint8_t m_remap = 0;
};

} // namespace sim
