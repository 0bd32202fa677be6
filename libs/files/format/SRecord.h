#pragma once

#include "libs/files/format/Format.h"

namespace files {

// Motorola S-record. Reads S0 to S3 and S5 to S9; an S5 or S6 must count the data records before it.
// The file ends with an S7 to S9, or with such a count: some writers leave the end record out, and a
// right count says as well that nothing is missing. Writes an S0 with the image's name, S3 records
// of 32 bytes and an S7.
Status readSRecord(InputFile &file, std::uint32_t base, RunCollector &runs);
Status writeSRecord(const std::vector<const Element *> &elements, const std::string &name, AtomicFile &file);

} // namespace files
