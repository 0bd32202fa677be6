#pragma once

#include <functional>
#include <optional>

#include "sim/links/UsartLine.h"
#include "sim/ports/Lateness.h"
#include "sim/ports/pty/Pty.h"

namespace sim {

// The chip's USART at a terminal: carries bytes between the two at the real time. It has no loop of its
// own: whoever runs it calls work() when the terminal has something, and no later than due().
class TerminalLine {
public:
    // With `pace` bytes take the time that they need at the rate that is set on the terminal.
    TerminalLine(Pty &pty, bool pace, Bootloader &bootloader, Faults &faults, Log &log);

    // Takes bytes in and gives out those that are due. Whether any went by.
    bool work();
    std::optional<Nanoseconds> due() const;

    // What has not left yet is lost.
    void forget() { m_line.toHost().clear(); }

    // Set when a fault unplugs the terminal and all that was to be delivered before that is.
    std::optional<Hangup> hangup() const;
    void replug() { m_line.replug(); }

private:
    bool takeFromHost();
    bool giveToHost();
    Nanoseconds giveBack(std::size_t length, unsigned baud, Nanoseconds room);

    Pty &m_pty;
    bool m_pace;
    Log &m_log;
    UsartProtocol m_protocol;
    UsartLine m_line;
    Lateness m_lateness;
    Nanoseconds m_lastDue = 0; // of the bytes that the host has
};

} // namespace sim
