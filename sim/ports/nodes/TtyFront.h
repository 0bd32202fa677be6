#pragma once

#include "sim/program/Fronts.h"

namespace sim {

// The front of --tty: a serial port with modem control lines, which the board's wiring leads to the chip's
// reset and boot pins. `node` is its name under /dev: "ttyUSB0".
bool serveTty(Machine &machine, const std::string &node, std::string &error);

} // namespace sim
