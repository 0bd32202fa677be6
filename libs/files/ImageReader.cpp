#include "libs/files/ImageReader.h"

#include "libs/files/RunCollector.h"
#include "libs/files/format/Formats.h"

namespace files {

Status readImage(const char *name, InputFile &file, std::uint32_t base, Image &image) {
    const Format *format = formatOf(name);
    if (!format)
        return Status::badSuffix;
    RunCollector runs;
    const Status read = format->read(file, base, runs);
    if (read != Status::ok)
        return read;
    image.flat = format->flat;
    return runs.finish(image.elements);
}

} // namespace files
