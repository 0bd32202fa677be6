#pragma once

#include "sim/chip/Cells.h"

namespace sim {

// The one-time programmable area and its lock bytes. Without an area both have the length 0.
class Otp {
public:
    static constexpr std::uint32_t lockAddress = 0x1FFFF500;

    Otp(const ChipFacts &chip, Faults &faults);

    // Data: into blank cells of blocks that are not locked.
    Outcome writeData(std::size_t offset, const Bytes &bytes);

    // Lock bytes: once, to 00.
    Outcome writeLocks(std::size_t offset, const Bytes &bytes);

    Cells &data() { return m_data; }
    Cells &locks() { return m_locks; }
    const Cells &data() const { return m_data; }
    const Cells &locks() const { return m_locks; }

private:
    Cells m_data;
    Cells m_locks;
};

} // namespace sim
