#pragma once

#include <string>
#include <vector>

#include "line/view/Columns.h"
#include "line/view/State.h"

struct ScreenSize {
    std::size_t columns = 80;
    std::size_t lines = 24;
};

// The lines of a screen, from the top: the job, its nests in columns, and what came of it. None is longer than the
// screen is wide, and there are no more than it has. With colour they hold sequences for it, and no others.
std::vector<std::string> screenOf(const State &state, const ScreenSize &size, const Glyphs &glyphs);

// The words of the first line and of the last, without a limit.
std::string headOf(const State &state, const Glyphs &glyphs);
std::string footOf(const State &state, const Glyphs &glyphs);
