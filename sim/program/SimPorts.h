#pragma once

#include "sim/ports/PortKind.h"

namespace sim {

// The ports of zv32-sim.
const PortKinds &simPorts();

} // namespace sim
