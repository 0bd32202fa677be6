#include "sim/chip/Fault.h"

namespace sim {

namespace {

std::size_t index(Direction direction) {
    return direction == Direction::rx ? 0 : 1;
}
std::size_t index(CellKind cells) {
    return static_cast<std::size_t>(cells);
}

void apply(const Fault &fault, ByteEffect &effect) {
    constexpr unsigned defaultMask = 0x10;
    if (fault.kind == FaultKind::lost) {
        effect.lost = true;
    } else if (fault.kind == FaultKind::doubled) {
        effect.doubled = true;
    } else if (fault.kind == FaultKind::late) {
        effect.lateMs += fault.value.value_or(0);
    } else if (fault.kind == FaultKind::damage) {
        effect.damage = static_cast<std::uint8_t>(fault.value.value_or(defaultMask));
    } else {
        effect.hangup = true;
        effect.replugMs = fault.value;
    }
}

bool befallsBytes(FaultKind kind) {
    return kind != FaultKind::nack && kind != FaultKind::silence && kind != FaultKind::powerCut;
}

} // namespace

void Faults::happens(Fault &fault) {
    fault.spent = true;
    if (m_listener)
        m_listener(fault.spec);
}

ByteEffect Faults::byte(Direction direction) {
    const std::uint64_t number = ++m_bytes[index(direction)];
    ByteEffect effect;
    for (Fault &fault : m_faults) {
        if (!fault.spent && befallsBytes(fault.kind) && fault.direction == direction && fault.at == number) {
            happens(fault);
            apply(fault, effect);
        }
    }
    return effect;
}

bool Faults::frame(std::uint8_t opcode) {
    ++m_frames;
    const std::uint64_t ofOpcode = ++m_framesByOpcode[opcode];
    m_refusedAnswer.reset();
    bool answers = true;
    for (Fault &fault : m_faults) {
        const bool here = fault.opcode ? fault.opcode == opcode && fault.at == ofOpcode : fault.at == m_frames;
        if (fault.spent || !here || (fault.kind != FaultKind::nack && fault.kind != FaultKind::silence))
            continue;
        happens(fault);
        if (fault.kind == FaultKind::silence)
            answers = false;
        else
            m_refusedAnswer = fault.value.value_or(0);
    }
    return answers;
}

bool Faults::refuses(unsigned answer) {
    return m_refusedAnswer == answer;
}

bool Faults::powerFails(CellKind cells) {
    for (Fault &fault : m_faults) {
        const bool counts = fault.cells ? fault.cells == cells : cells != CellKind::erasing;
        if (fault.spent || fault.kind != FaultKind::powerCut || !counts)
            continue;
        if (fault.at == (fault.cells ? m_steps[index(cells)] : m_steps[0] + m_steps[1])) {
            happens(fault);
            return true;
        }
    }
    return false;
}

bool Faults::programmed(CellKind cells) {
    ++m_steps[index(cells)];
    return powerFails(cells);
}

} // namespace sim
