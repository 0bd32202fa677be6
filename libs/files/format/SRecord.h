#pragma once

#include "libs/files/format/Formats.h"

namespace files {

// Motorola S-record. Reads S0 to S3 and S5 to S9; an S5 or S6 must count the data records before it.
// Writes an S0 with the image's name, S3 records of 32 bytes, their count and an S7.
Status readSRecord(InputFile &file, std::uint32_t base, RunCollector &runs);
Status writeSRecord(const std::vector<const Element *> &elements, const std::string &name, AtomicFile &file);

} // namespace files
