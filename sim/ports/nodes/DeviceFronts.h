#pragma once

#include "sim/program/Fronts.h"

namespace sim {

// Those of zv32-sim-dev: a row here, and one in sim/Fronts.cpp that leads here.
const FrontTable &deviceFronts();

} // namespace sim
