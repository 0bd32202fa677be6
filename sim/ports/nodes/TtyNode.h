#pragma once

#include "sim/ports/Port.h"

namespace sim {

// The port of --tty: a serial port with modem control lines, which the board's wiring leads to the chip's
// reset and boot pins. `node` is its name under /dev: "ttyUSB0".
std::unique_ptr<Port> makeTtyNode(const Machine &machine, const std::string &node, std::string &error);

} // namespace sim
