#pragma once

#include <string>

// The directory of the map files, with a slash at its end: what ZV32_MAP_DIR names, if it is set to a name; else
// "./Map/", beside the working directory; else, where there is no "./Map" at all, the one that the build was given
// (ZV32_MAP_FALLBACK), if it was given one.
std::string mapDirectory();

// The same with another directory in the place of the build's; empty for none.
std::string mapDirectoryOr(const std::string &fallback);
