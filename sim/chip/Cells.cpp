#include "sim/chip/Cells.h"

#include <algorithm>

namespace sim {

namespace {
constexpr std::uint8_t erased = 0xFF;
}

Cells::Cells(std::size_t size, CellKind kind, std::size_t stepLength, Faults &faults)
    : m_bytes(size, erased), m_kind(kind), m_stepLength(stepLength), m_faults(&faults) {}

Bytes Cells::read(std::size_t offset, std::size_t length) const {
    const auto first = m_bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    return Bytes(first, first + static_cast<std::ptrdiff_t>(length));
}

bool Cells::canProgram(std::size_t offset, const Bytes &bytes) const {
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] != erased && m_bytes[offset + i] != erased)
            return false;
    return true;
}

bool Cells::program(std::size_t offset, const Bytes &bytes) {
    if (m_faults->powerFails(m_kind))
        return false;
    for (std::size_t i = 0; i < bytes.size(); i += m_stepLength) {
        const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(i);
        const auto last = first + static_cast<std::ptrdiff_t>(std::min(m_stepLength, bytes.size() - i));
        if (std::all_of(first, last, [](std::uint8_t byte) { return byte == erased; }))
            continue;
        // Programming can only clear bits.
        std::transform(first, last, m_bytes.begin() + static_cast<std::ptrdiff_t>(offset + i),
                       m_bytes.begin() + static_cast<std::ptrdiff_t>(offset + i),
                       [](std::uint8_t byte, std::uint8_t cell) { return static_cast<std::uint8_t>(byte & cell); });
        ++m_changes;
        if (m_faults->programmed(m_kind))
            return false;
    }
    return true;
}

bool Cells::erase(std::size_t offset, std::size_t length, std::size_t unit) {
    const std::size_t step = unit / 2;
    for (const std::size_t end = offset + length; offset < end; offset += step) {
        std::fill_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(offset), step, erased);
        ++m_changes;
        if (m_faults->programmed(CellKind::erasing))
            return false;
    }
    return true;
}

} // namespace sim
