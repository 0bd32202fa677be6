#pragma once

#include <cstddef>
#include <string>

// Texts as a terminal shows them, in columns.

// What a terminal can show.
struct Glyphs {
    bool utf8 = false; // else ASCII alone
    bool colour = false;
};

// The text, harmless, in characters that take one column or two; "?" stands in the place of every other.
std::string shown(const std::string &text, const Glyphs &glyphs);

// Of a text that is shown.
std::size_t columnsOf(const std::string &shown);

// Cut to so many columns where it is longer, with a mark at its end.
std::string cut(const std::string &shown, std::size_t columns, const Glyphs &glyphs);

// Filled up to so many columns where it is shorter.
std::string filled(const std::string &shown, std::size_t columns);
