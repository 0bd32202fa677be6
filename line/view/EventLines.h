#pragma once

#include <string>
#include <vector>

#include "line/view/Columns.h"
#include "line/view/State.h"

// What has happened between two states, each in a line; between none and the first, what the line makes.
std::vector<std::string> eventLines(const State *before, const State &now, const Glyphs &glyphs);
