#pragma once

#include "sim/chip/Cells.h"

namespace sim {

// The access protection byte: this value leaves the chip open, any other protects it.
constexpr std::uint8_t accessOpen = 0xA5;
constexpr std::uint8_t accessLow = 0x00;
constexpr std::uint8_t accessHigh = 0xCC; // on chips with levels: cannot be undone

// The option bytes: every byte of the compact form lies in memory with its complement after it.
class OptionBytes {
public:
    OptionBytes(const ChipFacts &chip, Faults &faults);

    // Item `i` of the compact form; one whose complement does not match reads FF.
    std::uint8_t item(std::size_t i) const;
    Bytes compact() const;

    // What the factory puts there: no protection, everything else FF.
    Bytes factory() const;

    // Erases all, then programs every byte with its complement, one pair a step. False when the power went.
    bool write(const Bytes &compact);

    Cells &cells() { return m_cells; }
    const Cells &cells() const { return m_cells; }

private:
    const OptionLayout *m_layout;
    Cells m_cells;
};

} // namespace sim
