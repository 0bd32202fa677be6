#pragma once

#include "sim/chip/Time.h"

namespace sim {

// What somebody in front of the board wants: SIGUSR1 is the reset button, any other signal the end.
enum class Wish { none, reset, end };

// From here on signals are read from the answer, a signalfd, and no longer delivered.
int takeSignals();

// The next signal that has come, without waiting.
Wish nextWish(int signals);

// Waits; end when a signal ends the simulator meanwhile. A chip without power has no reset button.
Wish waitUnplugged(int signals, Nanoseconds time);

} // namespace sim
