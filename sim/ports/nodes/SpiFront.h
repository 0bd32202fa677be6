#pragma once

#include "sim/program/Fronts.h"

namespace sim {

// The front of --spi: a device of the kernel's spidev interface, with the chip behind it.
bool serveSpi(Machine &machine, const std::string &node, std::string &error);

} // namespace sim
