#pragma once

#include <string>
#include <vector>

#include "tests/faults/Border.h"

namespace faults {

// Whether it changes a chip or a file, or lets the chip run its program.
bool changesChip(Function function);

// What fails is what needs it later: the sectors of a chip without its map, an image that was not cut at sectors.
bool failsLater(Function function);

// What the console may say where that function answers that status.
std::vector<std::string> textsOf(Function function, unsigned status);

} // namespace faults
