#pragma once

#include <string>

#include "sim/chip/Fault.h"

namespace sim {

// Adds the fault that `spec` tells, as `--fault` takes it. False and a message when it tells none.
bool addFault(Faults &faults, const std::string &spec, std::string &error);

} // namespace sim
