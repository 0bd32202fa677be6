#pragma once

#include <cstdint>

#include "libs/files/Image.h"
#include "libs/files/InputFile.h"
#include "libs/files/Status.h"

namespace files {

// Reads a whole open file by the suffix of its name; one without addresses starts at `base`. badSuffix where no format
// has it. After badFormat or badAddressRange of one record, the file tells where it stands; its end where records
// contradict each other.
Status readImage(const char *name, InputFile &file, std::uint32_t base, Image &image);

} // namespace files
