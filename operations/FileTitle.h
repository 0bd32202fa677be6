#pragma once

#include <string>

// The display name of a job that works on a file.
namespace filetitle {

// "Download------(a.hex)".
std::string withFile(const std::string &title, const std::string &fileName);

// The part of a path after its last "/"; false if there is none.
bool fileNameOf(const std::string &path, std::string &fileName);

} // namespace filetitle
