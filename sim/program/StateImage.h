#pragma once

#include <string>

#include "sim/chip/Chip.h"

namespace sim {

// What a state file holds: the name of the chip, every section without its runs of FF, the sLib area, and a
// checksum at the end.
Bytes encodeState(Chip &chip);

// Fills the chip. Empty, or what is wrong with the file; the chip is not to be used then.
std::string decodeState(const Bytes &file, Chip &chip);

// No state of this chip is longer.
std::size_t longestState(Chip &chip);

} // namespace sim
