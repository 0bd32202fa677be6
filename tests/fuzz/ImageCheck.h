#pragma once

#include <optional>
#include <string>

#include "tests/fuzz/PlainReaders.h"

namespace fuzz {

// Gives the content to the library as a file of that suffix: it has to take it and find the same cells as the plain
// reader did, or refuse it as that one did. Then cuts it along sectors, with and without leaving blank ones out, and
// writes it in every format and reads it back: not one cell may differ.
void checkImage(const std::string &suffix, const std::string &content, const std::optional<Cells> &plain);

} // namespace fuzz
