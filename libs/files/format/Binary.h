#pragma once

#include "libs/files/format/Format.h"

namespace files {

// Flat binary: the bytes from `base` on, or from the first element's address on. Gaps between
// elements are written as 0xFF; a file of more than maxImageSize is refused as badAddressRange, so
// that two elements far apart do not fill the disk.
Status readBinary(InputFile &file, std::uint32_t base, RunCollector &runs);
Status writeBinary(const std::vector<const Element *> &elements, const std::string &name, AtomicFile &file);

} // namespace files
