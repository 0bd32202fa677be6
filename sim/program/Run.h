#pragma once

#include "sim/ports/PortKind.h"

namespace sim {

// The whole program: the command line, the chip and its state file, and one port. The exit status.
int run(int argc, char **argv, const PortKinds &kinds);

} // namespace sim
