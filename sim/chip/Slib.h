#pragma once

#include "sim/chip/Cells.h"

namespace sim {

// The sLib area: a run of sectors that nobody can write, and whose code part nobody can read.
class Slib {
public:
    static constexpr std::uint16_t none = 0xFFFF; // no data part, no area

    struct Area {
        bool enabled = false;
        std::uint32_t password = 0;
        std::uint16_t start = none;
        std::uint16_t dataStart = none;
        std::uint16_t end = none;
    };

    const Area &area() const { return m_area; }
    void restore(const Area &area) { m_area = area; }

    Outcome enable(const Area &wanted, unsigned sectors);
    Outcome checkPassword(std::uint32_t password) const;
    void clear();

    bool covers(unsigned sector) const;
    bool hides(unsigned sector) const; // the code part

    std::uint64_t changes() const { return m_changes; }

private:
    Area m_area;
    std::uint64_t m_changes = 0;
};

} // namespace sim
