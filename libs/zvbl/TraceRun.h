#pragma once

#include <string>

namespace zvbl {

// Text as one word of a line: printable, and a blank is \x20.
std::string asWord(const std::string &text);

// True the first time that this process asks for the path.
bool isFirstOfRun(const std::string &path);

// The program, this library's version, the kind of link, and the words that the program was started with.
std::string describeRun(const char *link);

} // namespace zvbl
