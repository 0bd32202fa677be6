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

    Cells &data() { return data_; }
    Cells &locks() { return locks_; }
    const Cells &data() const { return data_; }
    const Cells &locks() const { return locks_; }

private:
    Cells data_;
    Cells locks_;
};

} // namespace sim
