#include "line/unit/MemoryImage.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include <unistd.h>

#include "device/Device.h"
#include "line/channel/Messages.h"

namespace {

// The next bytes of an open file.
void append(CProgramFile &file, unsigned int address, unsigned int length, int bytes) {
    auto *copy = static_cast<BYTE *>(std::malloc(length));
    if (copy == nullptr)
        throw std::bad_alloc();
    IMAGEELEMENT element{};
    element.dwAddress = address;
    element.dwDataLength = length;
    element.Data = copy;
    file.m_lsElement.append(element);
    const auto place = static_cast<off_t>(imagePlace + file.m_UiFileSize);
    if (pread(bytes, copy, length, place) != static_cast<ssize_t>(length))
        throw std::runtime_error("the image is not there");
    file.m_UiFileSize += length;
}

} // namespace

std::unique_ptr<CProgramFile> imageInMemory(const Json &runs, int bytes, const CDevice &device) {
    auto file = std::make_unique<CProgramFile>();
    file->m_StrPath = "/unit"; // without a name a job does nothing
    FILES_CreateImage(&file->m_pImage, 1);
    for (const Json &run : runs) {
        auto address = run.at("at").get<unsigned int>();
        auto rest = run.at("length").get<unsigned int>();
        while (rest > 0) {
            const auto sector = static_cast<unsigned int>(device.m_ISectorSize);
            const unsigned int length = std::min(rest, sector - address % sector);
            append(*file, address, length, bytes);
            rest -= length;
            address += length;
        }
    }
    return file;
}
