#pragma once

#include "sim/ports/Port.h"

namespace sim {

// The port of --dfu: chips in their bootloaders on a USB bus, as nodes in /dev/bus/usb.
std::unique_ptr<Port> makeDfuNode(const Machine &machine, const std::string &port, std::string &error);

} // namespace sim
