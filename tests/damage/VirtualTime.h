#pragma once

#include "sim/chip/Time.h"

// The time of this process is a number: what waits in the library makes it larger, and takes no time. So a run is
// the same on every machine, however busy that is.
namespace damage {

sim::Nanoseconds now();
void advanceTo(sim::Nanoseconds time); // never back

} // namespace damage
