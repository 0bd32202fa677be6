#pragma once

#include <string>

// Who an open attempt belongs to: a process, told apart from all that ever had its number by the start of the machine
// and its own. "3f0c...-... 4711 8812345"

// That of this process. Throws std::runtime_error where /proc tells nothing.
std::string ownerOfThis();

// Whether it may still be at work. One that can't be looked at may.
bool lives(const std::string &owner);
