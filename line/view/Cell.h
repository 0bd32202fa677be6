#pragma once

#include <string>

#include "line/view/Columns.h"
#include "line/view/State.h"

// What a screen shows of one nest, in so many columns; names are filled up to the width of the longest. The key is the
// one that opens or starts it.
std::string cellOf(const NestState &nest, char key, std::size_t nameWidth, std::size_t columns, const Glyphs &glyphs);

// The same in a line of its own, without the name: the state in words, "PASS 100042".
std::string wordsOf(const NestState &nest, const Glyphs &glyphs);
