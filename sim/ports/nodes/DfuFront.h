#pragma once

#include "sim/program/Fronts.h"

namespace sim {

// The front of --dfu: chips in their bootloaders on a USB bus, as nodes in /dev/bus/usb.
bool serveDfu(Machine &machine, const std::string &port, std::string &error);

} // namespace sim
