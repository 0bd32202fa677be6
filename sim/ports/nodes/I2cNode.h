#pragma once

#include "sim/ports/Port.h"

namespace sim {

// The port of --i2c: a bus of the kernel's i2c-dev interface, with the chip on it.
std::unique_ptr<Port> makeI2cNode(const Machine &machine, const std::string &node, std::string &error);

} // namespace sim
