// The C border: null pointers, foreign handles, statuses and exceptions end here.

#include <algorithm>
#include <cstring>
#include <memory>

#include "device/FilesInc.h"
#include "libs/files/AtomicFile.h"
#include "libs/files/Filter.h"
#include "libs/files/Handles.h"
#include "libs/files/Image.h"
#include "libs/files/ImageReader.h"
#include "libs/files/InputFile.h"
#include "libs/files/MapFile.h"
#include "libs/files/Status.h"
#include "libs/files/format/Formats.h"

namespace {

using files::Image;
using files::Status;

constexpr unsigned int noError = 0x12340000;
constexpr int filterOperation = 2;

template <typename Work>
Status guarded(Work work) noexcept {
    try {
        return work();
    } catch (...) {
        return Status::unexpectedError;
    }
}

template <typename Work>
unsigned int answer(Work work) noexcept {
    const Status status = guarded(work);
    return status == Status::ok ? noError : static_cast<unsigned int>(status);
}

// Does the work on the image of a handle.
template <typename Work>
unsigned int answerFor(HANDLE handle, Work work) noexcept {
    return answer([&] {
        const std::shared_ptr<Image> image = files::handles::find(handle);
        return image ? work(*image) : Status::badParameter;
    });
}

Status readImage(const char *path, bool program, HANDLE *handle) {
    if (!files::formatOf(path))
        return Status::badSuffix;
    files::InputFile file;
    const Status opened = file.open(path);
    if (opened != Status::ok)
        return opened;
    auto image = std::make_shared<Image>();
    // User system data know no flash address: a flat file of them starts at 0.
    const Status read = files::readImage(path, file, program ? files::flashBase : 0, *image);
    if (read == Status::ok)
        *handle = files::handles::give(std::move(image));
    return read;
}

Status writeImage(const char *path, const Image &image) {
    const files::Format *format = files::formatOf(path);
    if (!format)
        return Status::badSuffix;
    // A file of nothing would take the place of one that somebody needs.
    if (image.elements.empty())
        return Status::badParameter;
    std::vector<const files::Element *> elements;
    const Status sorted = image.sorted(elements);
    if (sorted != Status::ok)
        return sorted;
    files::AtomicFile file;
    const Status created = file.create(path);
    if (created != Status::ok)
        return created;
    const Status written = format->write(elements, image.name, file);
    return written == Status::ok ? file.commit() : written;
}

// How many records the caller has room for: the count that he hands in, or the one in the record.
DWORD recordRoom(short handedIn, const MAPPING &mapping) {
    return mapping.pSectors ? std::max(static_cast<DWORD>(std::max<short>(handedIn, 0)), mapping.NbSectors) : 0;
}

} // namespace

unsigned int FILES_CreateImage(HANDLE *image, int) {
    return answer([&] {
        if (!image)
            return Status::badParameter;
        *image = nullptr;
        *image = files::handles::give(std::make_shared<Image>());
        return Status::ok;
    });
}

unsigned int FILES_CreateImageFromMapping(HANDLE *image, PMAPPING mapping, unsigned int bank3Size) {
    return answer([&] {
        if (!image || !mapping)
            return Status::badParameter;
        *image = nullptr;
        auto made = std::make_shared<Image>();
        const Status status = made->makeSectors(*mapping, std::uint64_t(bank3Size) * 1024);
        if (status == Status::ok)
            *image = files::handles::give(std::move(made));
        return status;
    });
}

unsigned int FILES_DestroyImage(HANDLE *image) {
    return answer([&] {
        if (!image || !files::handles::take(*image))
            return Status::badParameter;
        *image = nullptr;
        return Status::ok;
    });
}

unsigned int FILES_ImageFromFile(const char *path, HANDLE *image, int program) {
    return answer([&] {
        if (!path || !image)
            return Status::badParameter;
        *image = nullptr;
        return readImage(path, program != 0, image);
    });
}

unsigned int FILES_ImageToFile(const char *path, HANDLE handle) {
    return answerFor(handle, [&](Image &image) { return path ? writeImage(path, image) : Status::badParameter; });
}

unsigned int FILES_SetImageName(HANDLE handle, const char *name) {
    return answerFor(handle, [&](Image &image) {
        if (!name)
            return Status::badParameter;
        image.name = name;
        return Status::ok;
    });
}

unsigned int FILES_FilterImageForOperation(HANDLE handle, PMAPPING mapping, int operation, BYTE optimise) {
    return answerFor(handle, [&](Image &image) {
        if (!mapping || operation != filterOperation)
            return Status::badParameter;
        return files::filterImage(image, *mapping, optimise != 0);
    });
}

unsigned int FILES_GetImageNbElement(HANDLE handle, unsigned int *count) {
    return answerFor(handle, [&](Image &image) {
        if (!count)
            return Status::badParameter;
        *count = static_cast<unsigned int>(image.elements.size());
        return Status::ok;
    });
}

unsigned int FILES_GetImageElement(HANDLE handle, unsigned int index, PIMAGEELEMENT element) {
    return answerFor(handle, [&](Image &image) {
        if (!element || index >= image.elements.size())
            return Status::badParameter;
        const files::Element &source = image.elements[index];
        element->dwAddress = source.address;
        element->dwDataLength = source.length;
        if (element->Data)
            std::memcpy(element->Data, source.bytes.get(), source.length);
        return Status::ok;
    });
}

unsigned int FILES_SetImageElement(HANDLE handle, unsigned int index, BYTE insert, IMAGEELEMENT element) {
    return answerFor(
        handle, [&](Image &image) { return insert ? image.insert(index, element) : image.replace(index, element); });
}

unsigned int FILES_GetMemoryMapping(const char *path, short *sectors, char *name, short *packetSize, PMAPPING mapping,
                                    BYTE *sectorsPerSector) {
    if (!path || !sectors)
        return static_cast<unsigned int>(Status::badParameter);
    const DWORD room = mapping ? recordRoom(*sectors, *mapping) : 0;
    *sectors = 0;
    if (packetSize)
        *packetSize = 0;
    return static_cast<unsigned int>(guarded([&] {
        files::MapFile map;
        const Status read = map.read(path);
        if (read != Status::ok)
            return read;
        if (mapping && !mapping->pSectors)
            return Status::badParameter;
        if (mapping && static_cast<DWORD>(map.sectorCount) > room)
            return Status::elementsFull;
        *sectors = map.sectorCount;
        if (name)
            std::memcpy(name, map.name.c_str(), map.name.size() + 1);
        if (packetSize)
            *packetSize = map.packetSize;
        if (sectorsPerSector)
            *sectorsPerSector = map.sectorsPerSector;
        if (mapping)
            map.fill(*mapping);
        return Status::ok;
    }));
}
