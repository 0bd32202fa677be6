#pragma once

#include <string>
#include <vector>

#include "sim/bootloader/Board.h"
#include "sim/chip/Chip.h"
#include "sim/ports/PortKind.h"

namespace sim {

// What the command line asks for.
struct Options {
    enum class Task { serve, list, help };

    Task task = Task::serve;
    const ChipFacts *chip = nullptr;
    const PortKind *kind = nullptr;
    std::string port;  // the value of the port's option
    std::string state; // empty: the chip is new in every run
    std::string log;   // empty: standard error
    unsigned spimMb = 16;
    unsigned unit = 0;
    unsigned beside = 0; // further chips of the same kind
    Wiring wiring;       // of the board
    bool pace = false;
    bool verbose = false;
    FlashTime flashTime;
    Faults faults;
};

// False and a message for a line that asks for nothing sensible.
bool parseOptions(int argc, char **argv, const PortKinds &kinds, Options &options, std::string &error);

extern const char helpText[];

} // namespace sim
