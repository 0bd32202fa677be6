#pragma once

#include "sim/ports/PortKind.h"

namespace sim {

// The ports of zv32-sim-dev: a row here, and one in sim/program/SimPorts.cpp that leads here.
const PortKinds &nodePorts();

} // namespace sim
