#pragma once

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

    // Serves until a signal ends it. `signals` is a signalfd: SIGUSR1 is the reset button, any other
    // signal the end. Returns false and a message when the port cannot be made.
    bool serve(int signals, std::string &error);

private:
    enum class Wish { goOn, end };

    bool plugIn(std::string &error);
    Wish followSignals(int signals);
    bool waitUnplugged(int signals, unsigned ms);
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

} // namespace sim
