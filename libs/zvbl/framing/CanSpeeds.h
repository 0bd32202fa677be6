#pragma once

#include <cstdint>

namespace zvbl {

// The bit rates that a chip knows, and their codes in SET_SPEED; docs/wire-protocol.md, "CAN".
struct CanSpeed {
    std::uint8_t code;
    unsigned bitsPerSecond;
};

constexpr CanSpeed canSpeeds[] = {
    {1, 125000}, {2, 250000}, {3, 500000}, {4, 1000000}, {5, 100000}, {6, 50000}, {7, 20000}, {8, 800000},
};

// By its code or by its rate; null: the chip knows no such speed.
inline const CanSpeed *findCanSpeed(unsigned long speed) {
    for (const CanSpeed &row : canSpeeds)
        if (row.code == speed || row.bitsPerSecond == speed)
            return &row;
    return nullptr;
}

} // namespace zvbl
