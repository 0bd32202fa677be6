#pragma once

#include <string>

#include "sim/ports/pty/TerminalLine.h"
#include "sim/program/Fronts.h"
#include "sim/program/Signals.h"

namespace sim {

// The serial port of the simulated chip: a pseudo terminal with a link to it.
class UsartFront {
public:
    UsartFront(Machine &machine, std::string path);

    // Serves until a signal ends it. Returns false and a message when the port cannot be made.
    bool serve(std::string &error);

private:
    bool plugIn(std::string &error);
    bool absent(); // the time between unplugging and plugging in again; false when it ends there
    Wish followSignals();
    void wait();
    void restIfIdle();

    Machine &machine_;
    std::string path_;
    Bootloader bootloader_;
    Pty pty_;
    TerminalLine line_;
    bool rested_ = true;
};

// The front of --usart.
bool serveUsart(Machine &machine, const std::string &path, std::string &error);

} // namespace sim
