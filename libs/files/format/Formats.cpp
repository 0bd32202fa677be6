#include "libs/files/format/Formats.h"

#include <cstring>
#include <strings.h>

#include "libs/files/format/Binary.h"
#include "libs/files/format/IntelHex.h"
#include "libs/files/format/SRecord.h"

namespace files {

namespace {

const Format formats[] = {
    {ImageFormat::binary, true, readBinary, writeBinary},
    {ImageFormat::intelHex, false, readIntelHex, writeIntelHex},
    {ImageFormat::sRecord, false, readSRecord, writeSRecord},
};

bool endsWith(const char *path, const char *suffix) {
    const std::size_t length = std::strlen(path);
    const std::size_t tail = std::strlen(suffix);
    return length >= tail && ::strcasecmp(path + length - tail, suffix) == 0;
}

} // namespace

const Format *formatOf(const char *path) {
    for (const ImageSuffix &suffix : imageSuffixes)
        for (const Format &format : formats)
            if (format.id == suffix.format && endsWith(path, suffix.text))
                return &format;
    return nullptr;
}

} // namespace files
