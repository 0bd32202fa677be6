#pragma once

#include "libs/files/format/Format.h"

namespace files {

// Intel HEX. Reads record types 00 to 05; data in a segment (type 02) wraps at its 64 KB, linear
// data (type 04) runs on into the next 64 KB. Writes type 04 records and 32 bytes a record.
Status readIntelHex(InputFile &file, std::uint32_t base, RunCollector &runs);
Status writeIntelHex(const std::vector<const Element *> &elements, const std::string &name, AtomicFile &file);

} // namespace files
