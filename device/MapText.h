#pragma once

#include <optional>
#include <string>

// Whether a file may be read as a map: a regular file of at most 1 MB, in which no value begins with
// "@" or a backslash. Qt makes objects of such values, of any size and depth, when it reads them.
bool IsHarmlessMap(const std::string &path);

// Which chips a map is for; an entry that is missing is empty.
struct MapIdentity {
    std::string pid;
    std::string serial;
};

// The same as Qt reads it, without Qt, which takes long for all maps of a directory. None for a map that holds anything
// but one [Product] and lines NAME=WORD: whoever asks has to read that with Qt, if it is harmless.
std::optional<MapIdentity> ReadPlainMap(const std::string &path);
