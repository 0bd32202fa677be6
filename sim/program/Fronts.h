#pragma once

#include <functional>
#include <string>
#include <vector>

#include "sim/bootloader/Log.h"
#include "sim/chip/Chip.h"

namespace sim {

struct Options;

// A chip under power, and what a front needs to serve it.
struct Machine {
    const Options &options;
    Chip &chip;
    Faults &faults;
    Log &log;
    std::function<void()> idle; // to be called when the port has been quiet for a moment: saves the state
    int signals;                // see Signals.h
};

// One kind of port that the chip can sit at: a row of a program's table.
struct Front {
    const char *option;   // its word on the command line
    const char *argument; // what that word's value is, null for none
    const char *program;  // another program of the same directory serves it, under a preload; else null

    // Makes the port, prints "ready ...", and serves until a signal ends it or it is unplugged for good.
    // False and a message when the port cannot be made.
    bool (*serve)(Machine &machine, const std::string &port, std::string &error);

    const char *usual = nullptr; // the value when the word stands alone; null: it needs one
    bool several = false;        // further chips can be beside the first
    bool lines = false;          // it has modem control lines that can be wired to the chip
};

using FrontTable = std::vector<Front>;

// Those of zv32-sim.
const FrontTable &simFronts();

// The whole program: the command line, the chip and its state file, and one front.
int run(int argc, char **argv, const FrontTable &fronts);

} // namespace sim
