#pragma once

#include "sim/ports/Port.h"

namespace sim {

// The port of --spi: a device of the kernel's spidev interface, with the chip behind it.
std::unique_ptr<Port> makeSpiNode(const Machine &machine, const std::string &node, std::string &error);

} // namespace sim
