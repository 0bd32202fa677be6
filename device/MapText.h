#pragma once

#include <string>

// Whether a file may be read as a map: a regular file of at most 1 MB, in which no value begins with
// "@" or a backslash. Qt makes objects of such values, of any size and depth, when it reads them.
bool IsHarmlessMap(const std::string &path);
