#pragma once

#include "sim/program/Fronts.h"

namespace sim {

// The fronts that are USB devices on the real kernel; "ready" tells the node by which programs reach them.
bool serveVhciDfu(Machine &machine, const std::string &port, std::string &error);
bool serveVhciAcm(Machine &machine, const std::string &port, std::string &error);
bool serveVhciI2c(Machine &machine, const std::string &port, std::string &error);

} // namespace sim
