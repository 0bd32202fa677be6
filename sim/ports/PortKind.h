#pragma once

#include "sim/ports/Port.h"

namespace sim {

// One kind of port that the chip can sit at: a row of a program's table.
struct PortKind {
    const char *option;   // its word on the command line
    const char *argument; // what that word's value is, null for none
    const char *program;  // another program of the same directory serves it, under a preload; else null

    // Null and a message for a name that is none.
    std::unique_ptr<Port> (*make)(const Machine &machine, const std::string &name, std::string &error);

    const char *usual = nullptr; // the value when the word stands alone; null: it needs one
    bool several = false;        // further chips can be beside the first
    bool lines = false;          // it has modem control lines that can be wired to the chip
};

using PortKinds = std::vector<PortKind>;

} // namespace sim
