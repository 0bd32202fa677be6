#pragma once

#include "libs/files/format/Format.h"

namespace files {

// The format of that suffix, in any case; null if there is none.
const Format *formatOf(const char *path);

} // namespace files
