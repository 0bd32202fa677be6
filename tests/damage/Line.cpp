#include "tests/damage/Line.h"

#include <cstring>
#include <stdexcept>

namespace damage {

namespace {
constexpr std::size_t spimSize = 1024 * 1024; // on a board whose chip takes one
}

Line::Line(const sim::ChipFacts &facts, const sim::CommandTable *variants, const sim::CommandTable *additions)
    : m_chip(facts, spimSize, {2 * sim::millisecond, sim::millisecond / 2}, m_faults),
      bootloader(m_chip, m_faults, m_log, variants, additions) {}

sim::Cells &Line::flash() {
    for (const sim::Chip::Section &section : m_chip.sections())
        if (std::strcmp(section.name, "flash") == 0)
            return *section.cells;
    throw std::logic_error("a chip without flash");
}

} // namespace damage
