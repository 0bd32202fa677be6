#pragma once

#include <optional>
#include <string>

#include "sim/bootloader/Bootloader.h"

namespace sim {

// A modem control line of a serial port. High means asserted: at the plug of an adapter with TTL levels the
// pin then has the low voltage.
enum class ControlLine { dtr, rts };

// A pin of the chip that a control line is wired to, and the level at which it is active.
struct Pin {
    ControlLine line;
    bool active; // true: high
};

// What the control lines do on a board. A pin without a line is pulled to rest: reset to inactive, boot to
// the bootloader.
struct Wiring {
    std::optional<Pin> reset;
    std::optional<Pin> boot;
};

// From "reset=dtr:low,boot=rts:high", either alone too. False and a message for anything else.
bool parseWiring(const std::string &text, Wiring &wiring, std::string &error);

// The board around a chip. While reset is active the chip is held, and whenever it starts - released, by
// the button, by its own doing, under new power - it looks at boot: active means bootloader, inactive its
// own program. It knows no clock: whoever moves a line says when.
class Board {
public:
    // It has power and has started by now, with both lines low: nobody has opened the port yet.
    Board(const Wiring &wiring, Bootloader &bootloader, Log &log, Nanoseconds now);

    // Both lines at once, as the driver of a port moves them.
    void setLines(bool dtr, bool rts, Nanoseconds now);
    bool dtr() const { return m_dtr; }
    bool rts() const { return m_rts; }

    // Whether reset is active.
    bool held() const { return m_held; }

    void button(Nanoseconds now);    // reset, by hand
    void losePower(Nanoseconds now); // and it is back, with both lines low

private:
    bool active(const Pin &pin) const { return (pin.line == ControlLine::dtr ? m_dtr : m_rts) == pin.active; }
    void follow(Nanoseconds now);

    const Wiring m_wiring;
    Bootloader &m_bootloader;
    Log &m_log;
    bool m_dtr = false;
    bool m_rts = false;
    bool m_held = false;
};

} // namespace sim
