#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "device/ImageSuffixes.h"
#include "libs/files/AtomicFile.h"
#include "libs/files/Image.h"
#include "libs/files/InputFile.h"
#include "libs/files/RunCollector.h"
#include "libs/files/Status.h"

namespace files {

// One row per format. A new one is a file pair in this folder, a row in Formats.cpp and its suffixes in
// device/ImageSuffixes.h.
struct Format {
    ImageFormat id;
    bool flat; // has no addresses of its own: starts at the address that it is given

    // Reads the whole file; `base` is for a flat one.
    Status (*read)(InputFile &file, std::uint32_t base, RunCollector &runs);

    // Writes elements that rise in address and do not overlap; `name` is the image's.
    Status (*write)(const std::vector<const Element *> &elements, const std::string &name, AtomicFile &file);
};

} // namespace files
