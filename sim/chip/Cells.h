#pragma once

#include "sim/chip/ChipTable.h"
#include "sim/chip/Fault.h"

namespace sim {

// What became of something that the chip was asked to do.
struct Outcome {
    enum class Kind { done, refused, powerLost };
    Kind kind = Kind::done;
    std::string why;        // of a refusal
    bool notErased = false; // it was refused because of what a cell holds

    static Outcome refuse(std::string why) { return {Kind::refused, std::move(why), false}; }
    static Outcome refuseNotErased(std::string why) { return {Kind::refused, std::move(why), true}; }
    static Outcome powerLost() { return {Kind::powerLost, {}, false}; }
    bool done() const { return kind == Kind::done; }
};

// A non-volatile array. Erased cells read FF, and only those can be programmed. The power can fail
// after each programming step; what the steps before it wrote stays.
class Cells {
public:
    // `stepLength`: bytes that one programming step writes.
    Cells(std::size_t size, CellKind kind, std::size_t stepLength, Faults &faults);

    std::size_t size() const { return m_bytes.size(); }
    const std::uint8_t *data() const { return m_bytes.data(); }
    Bytes read(std::size_t offset, std::size_t length) const;

    // Whether every byte but FF would go into an erased cell.
    bool canProgram(std::size_t offset, const Bytes &bytes) const;

    // Programs in ascending order; steps of FF throughout are left out. False when the power went.
    bool program(std::size_t offset, const Bytes &bytes);

    // Erases units of so many bytes one after the other, each in two steps of half of it. False when the power went.
    bool erase(std::size_t offset, std::size_t length, std::size_t unit);

    // For loading a saved content: written as it is, without erasing or programming.
    std::uint8_t *raw() { return m_bytes.data(); }

    // Counts changes, so that an unchanged memory need not be saved.
    std::uint64_t changes() const { return m_changes; }

private:
    Bytes m_bytes;
    CellKind m_kind;
    std::size_t m_stepLength;
    Faults *m_faults;
    std::uint64_t m_changes = 0;
};

} // namespace sim
