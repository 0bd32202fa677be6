#pragma once

#include "sim/Fronts.h"
#include "sim/Signals.h"
#include "sim/fronts/Pty.h"
#include "sim/fronts/SerialLine.h"

#include <functional>
#include <string>

namespace sim {

// The serial port of the simulated chip: carries bytes between a pseudo terminal and the chip, at the
// real time.
class UsartFront {
public:
    // `idle` is called when the line has been quiet for a moment.
    UsartFront(std::string path, bool pace, Bootloader &bootloader, Faults &faults, Log &log,
               std::function<void()> idle);

    // Serves until a signal ends it. Returns false and a message when the port cannot be made.
    bool serve(int signals, std::string &error);

private:
    bool plugIn(std::string &error);
    Wish followSignals(int signals);
    void wait(int signals);
    void takeFromHost();
    void giveToHost();
    void restIfIdle();

    std::string path_;
    bool pace_;
    Bootloader &bootloader_;
    Log &log_;
    std::function<void()> idle_;
    UsartProtocol protocol_;
    SerialLine line_;
    Pty pty_;
    Nanoseconds lastTraffic_ = 0;
    bool rested_ = true;
};

// The front of --usart.
bool serveUsart(Machine &machine, const std::string &path, std::string &error);

} // namespace sim
