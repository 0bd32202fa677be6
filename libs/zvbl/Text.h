#pragma once

#include <string>

namespace zvbl {

// Text from outside as it may be shown: what is not printable ASCII becomes \xNN, so that it neither ends a
// line nor tells a terminal anything.
std::string printable(const std::string &text);

// What the operating system calls an errno, in English whatever the locale.
std::string errorText(int error);

} // namespace zvbl
