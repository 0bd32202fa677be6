#pragma once

#include <string>
#include <vector>

// The numbers that "0-15, 20" names, rising, each once. Throws std::invalid_argument, which says why, for another text
// and for numbers above 32767.
std::vector<int> readSectors(const std::string &text);

// "0-15, 20" of rising numbers.
std::string sectorsText(const std::vector<int> &sectors);
