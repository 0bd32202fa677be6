#pragma once

#include <cstdint>
#include <vector>

#include "libs/files/AtomicFile.h"
#include "libs/files/Image.h"
#include "libs/files/InputFile.h"
#include "libs/files/RunCollector.h"
#include "libs/files/Status.h"

namespace files {

// One row per suffix. A new format is a file pair in this folder and a row in Formats.cpp.
struct Format {
    const char *suffix; // lower case, with its dot
    bool flat;          // has no addresses of its own: starts at the address that it is given

    // Reads the whole file; `base` is for a flat one.
    Status (*read)(InputFile &file, std::uint32_t base, RunCollector &runs);

    // Writes elements that rise in address and do not overlap; `name` is the image's.
    Status (*write)(const std::vector<const Element *> &elements, const std::string &name, AtomicFile &file);
};

// The format of that suffix, in any case; null if there is none.
const Format *formatOf(const char *path);

} // namespace files
