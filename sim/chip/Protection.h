#pragma once

#include "sim/chip/OptionBytes.h"

namespace sim {

enum class AccessLevel { open, low, high };

// What the option bytes protect. Taken over at a reset: what is written later holds from the next one on.
class Protection {
public:
    Protection(const ChipFacts &chip, const OptionBytes &options);

    void latch();

    AccessLevel access() const { return m_access; }
    bool sectorProtected(unsigned sector) const;
    bool spimProtected() const;

    // How many bits of erase and program protection the option bytes have.
    unsigned bits() const;

    // The compact option bytes as they have to be written for a change; nothing is written here.
    Bytes withAccess(AccessLevel level) const;
    Bytes withBitsProtected(const Bytes &numbers) const;
    Bytes withBitsOpen() const;

private:
    unsigned bitOf(unsigned sector) const;
    bool bitProtects(unsigned bit) const;

    const ChipFacts *m_chip;
    const OptionLayout *m_layout;
    const OptionBytes *m_options;
    AccessLevel m_access = AccessLevel::open;
    Bytes m_epp;
};

} // namespace sim
