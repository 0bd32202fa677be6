#pragma once

#include "sim/program/Fronts.h"

namespace sim {

// The front of --i2c: a bus of the kernel's i2c-dev interface, with the chip on it.
bool serveI2c(Machine &machine, const std::string &node, std::string &error);

} // namespace sim
