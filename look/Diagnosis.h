#pragma once

#include <string>

#include "look/Report.h"

// Whether the file library takes the bytes of a file of that name as a program image; if not, tells why, with line and
// column where a record is at fault, and with both lines where two contradict each other.
bool isTaken(const std::string &name, const std::string &bytes, Section &report);
