#include "libs/files/format/Binary.h"

namespace files {

namespace {

constexpr std::size_t chunkSize = 1024 * 1024;
constexpr unsigned char gap = 0xFF;

} // namespace

Status readBinary(InputFile &file, std::uint32_t base, RunCollector &runs) {
    if (file.size() > maxImageSize)
        return Status::badAddressRange;
    // The last read, which finds the end, has to have its room too.
    runs.reserve(file.size() + chunkSize);
    std::uint64_t address = base;
    std::size_t got = 0;
    do {
        const Status read = file.read(runs.room(chunkSize), chunkSize, got);
        if (read != Status::ok)
            return read;
        const Status taken = runs.commit(address, got);
        if (taken != Status::ok)
            return taken;
        address += got;
    } while (got == chunkSize);
    return Status::ok;
}

Status writeBinary(const std::vector<const Element *> &elements, const std::string &, AtomicFile &file) {
    if (elements.empty())
        return Status::ok;
    std::uint64_t address = elements.front()->address;
    if (elements.back()->end() - address > maxImageSize)
        return Status::badAddressRange;
    for (const Element *element : elements) {
        const Status filled = file.fill(gap, element->address - address);
        if (filled != Status::ok)
            return filled;
        const Status written = file.write(element->bytes.get(), element->length);
        if (written != Status::ok)
            return written;
        address = element->end();
    }
    return Status::ok;
}

} // namespace files
