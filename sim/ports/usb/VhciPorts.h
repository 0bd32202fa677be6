#pragma once

#include "sim/ports/Port.h"

namespace sim {

// The ports that are USB devices on the real kernel; "ready" tells the node by which programs reach them.
std::unique_ptr<Port> makeVhciDfu(const Machine &machine, const std::string &name, std::string &error);
std::unique_ptr<Port> makeVhciAcm(const Machine &machine, const std::string &name, std::string &error);
std::unique_ptr<Port> makeVhciI2c(const Machine &machine, const std::string &name, std::string &error);

} // namespace sim
