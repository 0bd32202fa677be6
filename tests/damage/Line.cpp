#include "tests/damage/Line.h"

#include <cstring>
#include <stdexcept>

namespace damage {

Line::Line(const sim::ChipFacts &facts, const sim::CommandTable *variants, const sim::CommandTable *additions)
    : m_chip(facts, 0, {2 * sim::millisecond, sim::millisecond / 2}, m_noFaults),
      bootloader(m_chip, m_noFaults, m_log, variants, additions) {}

sim::Cells &Line::flash() {
    for (const sim::Chip::Section &section : m_chip.sections())
        if (std::strcmp(section.name, "flash") == 0)
            return *section.cells;
    throw std::logic_error("a chip without flash");
}

} // namespace damage
