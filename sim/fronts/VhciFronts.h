#pragma once

#include "sim/Fronts.h"

namespace sim {

// The fronts that are USB devices on the real kernel; "ready" tells the node of the driver that took them.
bool serveVhciAcm(Machine &machine, const std::string &port, std::string &error);

} // namespace sim
