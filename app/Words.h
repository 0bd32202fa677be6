#pragma once

#include <string>

// The words of the command line.

// True for exactly the option words, case-sensitive. It stands beside their table: app/Walk.cpp.
bool Is_Option(const std::string &option);

// True for the 32 sub-option words in any case. "--y" is none of them: it only ever stands as a value.
bool Is_SubOption(const std::string &suboption);

// Parity for the link, 0 none, 1 odd, 2 even and everything else. Unlike ShareParameter::ParityToInt it takes
// any case.
int ParityToInt(const std::string &parity);
