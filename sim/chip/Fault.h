#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sim {

// Which cells a programming step went into, or that it was one of erasing.
enum class CellKind { flash, options, erasing };

enum class Direction { rx, tx }; // as the chip sees it: rx comes from the host

enum class FaultKind { nack, silence, lost, late, doubled, damage, hangup, powerCut };

// One fault. Every fault happens once.
struct Fault {
    FaultKind kind = FaultKind::nack;
    Direction direction = Direction::rx;
    std::uint64_t at = 0;          // counts bytes, frames or programming steps
    std::optional<unsigned> value; // milliseconds, damage mask or answer number
    std::optional<std::uint8_t> opcode;
    std::optional<CellKind> cells;
    std::string spec; // as it was told
    bool spent = false;
};

// What befalls one byte on the line.
struct ByteEffect {
    bool lost = false;
    bool doubled = false;
    unsigned lateMs = 0;
    std::uint8_t damage = 0; // XORed into the byte
    bool hangup = false;
    std::optional<unsigned> replugMs; // after a hang-up: plugged in again after that time
};

// The faults of one run, and the counters that they wait for.
class Faults {
public:
    void add(const Fault &fault) { m_faults.push_back(fault); }

    // Whom to tell of a fault when it happens, by what it was told as.
    void tell(std::function<void(const std::string &spec)> listener) { m_listener = std::move(listener); }

    // The next byte goes by: counts it.
    ByteEffect byte(Direction direction);

    // How many went by.
    std::uint64_t bytes(Direction direction) const { return m_bytes[direction == Direction::rx ? 0 : 1]; }

    // A command opens: counts it. False when the chip falls silent here.
    bool frame(std::uint8_t opcode);

    // How many commands were opened.
    std::uint64_t frames() const { return m_frames; }

    // Whether answer number `answer` of the open command has to be a NACK; 0 is the one after the opcode.
    bool refuses(unsigned answer);

    // Programming: asked before the first step of a write. True when the power goes.
    bool powerFails(CellKind cells);

    // One programming step is done, or one of erasing. True when the power goes after it.
    bool programmed(CellKind cells);

    // How many were done.
    std::uint64_t steps(CellKind cells) const { return m_steps[static_cast<std::size_t>(cells)]; }

private:
    void happens(Fault &fault);

    std::vector<Fault> m_faults;
    std::function<void(const std::string &)> m_listener;
    std::array<std::uint64_t, 2> m_bytes{};
    std::array<std::uint64_t, 3> m_steps{};
    std::uint64_t m_frames = 0;
    std::map<std::uint8_t, std::uint64_t> m_framesByOpcode;
    std::optional<unsigned> m_refusedAnswer;
};

} // namespace sim
