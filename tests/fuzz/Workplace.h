#pragma once

#include <string>

#include "tests/libfiles/LibFiles.h"

namespace fuzz {

// A directory for the files of this process, gone at its end. In memory where there is such a place: an input takes
// less time than a disk needs to answer.
const libfiles::TempDir &workplace();

// Puts the content into the file in the place of the old one.
void fill(const std::string &path, const std::string &content);

} // namespace fuzz
