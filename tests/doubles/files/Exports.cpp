// Every function of libFiles.so.1, recorded and answered by the script; the format stands on top of Script.h.

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <new>

#include "Script.h"
#include "device/FilesInc.h"

using namespace filesdouble;

namespace {

constexpr unsigned int success = 0x12340000;
constexpr unsigned int badParameter = 8;
constexpr DWORD spimStart = 0x08400000;
constexpr DWORD spimSectorSize = 4096;

struct Image {
    unsigned long number;
    std::vector<Element> elements;
};

std::mutex mutex;

// As in the library, a handle is a block that its owner may drop without a call.
std::map<HANDLE, Image> &images() {
    static auto &all = *new std::map<HANDLE, Image>; // a job's thread may call while the process ends
    return all;
}

Image *imageOf(HANDLE handle) {
    const auto found = images().find(handle);
    return found == images().end() ? nullptr : &found->second;
}

std::string imageText(HANDLE handle) {
    if (handle == nullptr)
        return " image=0";
    const Image *image = imageOf(handle);
    return image == nullptr ? " image=unknown" : " image=" + std::to_string(image->number);
}

const std::vector<Element> &elementsOf(HANDLE handle) {
    static const auto &none = *new std::vector<Element>;
    const Image *image = imageOf(handle);
    return image == nullptr ? none : image->elements;
}

// The scripted status of a call for an image; a handle that was never given out is a bad parameter.
unsigned int answerFor(HANDLE handle, const std::string &function) {
    const unsigned int status = answer(function, success);
    return imageOf(handle) == nullptr && status == success ? badParameter : status;
}

std::string text(const char *value) {
    return value == nullptr ? "(null)" : value;
}

unsigned int done(const std::string &call, unsigned int status) {
    log(call + " -> " + hex(status, 1));
    return status;
}

// Ends a call that makes an image: makes it on success.
unsigned int made(const std::string &call, unsigned int status, HANDLE *image, std::vector<Element> elements) {
    if (status == success) {
        *image = ::operator new(1);
        images()[*image] = {nextImage(), std::move(elements)};
    }
    log(call + " ->" + imageText(status == success ? *image : nullptr) + " " + hex(status, 1));
    return status;
}

std::vector<Element> elementsOf(const MAPPING &map, unsigned int bank3Kilobytes) {
    std::vector<Element> elements;
    for (DWORD i = 0; i < map.NbSectors; ++i)
        elements.push_back({map.pSectors[i].dwStartAddress, std::vector<BYTE>(map.pSectors[i].dwSectorSize, 0xFF)});
    for (DWORD offset = 0; offset < DWORD{bank3Kilobytes} * 1024; offset += spimSectorSize)
        elements.push_back({spimStart + offset, std::vector<BYTE>(spimSectorSize, 0xFF)});
    return elements;
}

std::string elementText(const IMAGEELEMENT &element) {
    std::string shown;
    for (DWORD i = 0; element.Data != nullptr && i < std::min<DWORD>(element.dwDataLength, 4); ++i)
        shown += hex(element.Data[i], 2);
    return " address=" + hex(element.dwAddress, 8) + " length=" + std::to_string(element.dwDataLength) +
           " data=" + (element.Data == nullptr ? "null" : shown);
}

void fillSectors(MAPPING &mapping) {
    const MapAnswer &map = mapAnswer();
    mapping.NbSectors = static_cast<DWORD>(std::max<short>(map.sectors, 0));
    std::strncpy(mapping.Name, map.name.c_str(), sizeof mapping.Name - 1);
    for (DWORD i = 0; i < mapping.NbSectors; ++i) {
        MAPPINGSECTOR &sector = mapping.pSectors[i];
        sector = {};
        std::strcpy(sector.Name, ("Sector" + std::to_string(i)).c_str());
        sector.dwStartAddress = sector.dwAliasedAddress = map.start + i * map.size;
        sector.dwSectorIndex = i;
        sector.dwSectorSize = map.size;
        sector.UseForOperation = sector.UseForErase = sector.UseForUpload = sector.UseForEraseProgramProtect = true;
    }
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

unsigned int FILES_CreateImage(HANDLE *image, int one) {
    const std::lock_guard<std::mutex> lock(mutex);
    return made("FILES_CreateImage one=" + std::to_string(one), answer("FILES_CreateImage", success), image, {});
}

unsigned int FILES_CreateImageFromMapping(HANDLE *image, PMAPPING mapping, unsigned int bank3Size) {
    const std::lock_guard<std::mutex> lock(mutex);
    return made("FILES_CreateImageFromMapping sectors=" + std::to_string(mapping->NbSectors) +
                    " bank3=" + std::to_string(bank3Size),
                answer("FILES_CreateImageFromMapping", success), image, elementsOf(*mapping, bank3Size));
}

unsigned int FILES_DestroyImage(HANDLE *image) {
    const std::lock_guard<std::mutex> lock(mutex);
    const std::string call = "FILES_DestroyImage" + imageText(*image);
    const bool known = images().erase(*image) != 0;
    if (known)
        ::operator delete(*image);
    // The handle stays: a library that does not null it must not be destroyed with twice.
    return done(call, answer("FILES_DestroyImage", known ? success : badParameter));
}

unsigned int FILES_ImageFromFile(const char *path, HANDLE *image, int program) {
    const std::lock_guard<std::mutex> lock(mutex);
    return made("FILES_ImageFromFile path=" + text(path) + " program=" + std::to_string(program),
                answer("FILES_ImageFromFile", success), image, fileElements());
}

unsigned int FILES_ImageToFile(const char *path, HANDLE image) {
    const std::lock_guard<std::mutex> lock(mutex);
    const std::vector<Element> elements = elementsOf(image);
    std::size_t bytes = 0;
    for (const Element &element : elements)
        bytes += element.data.size();
    return done("FILES_ImageToFile path=" + text(path) + imageText(image) +
                    " elements=" + std::to_string(elements.size()) + " bytes=" + std::to_string(bytes),
                answerFor(image, "FILES_ImageToFile"));
}

unsigned int FILES_SetImageName(HANDLE image, const char *name) {
    const std::lock_guard<std::mutex> lock(mutex);
    return done("FILES_SetImageName" + imageText(image) + " name=" + text(name),
                answerFor(image, "FILES_SetImageName"));
}

unsigned int FILES_FilterImageForOperation(HANDLE image, PMAPPING mapping, int operation, BYTE optimise) {
    const std::lock_guard<std::mutex> lock(mutex);
    return done("FILES_FilterImageForOperation" + imageText(image) + " sectors=" + std::to_string(mapping->NbSectors) +
                    " operation=" + std::to_string(operation) + " optimise=" + std::to_string(optimise),
                answerFor(image, "FILES_FilterImageForOperation"));
}

unsigned int FILES_GetImageNbElement(HANDLE image, unsigned int *count) {
    const std::lock_guard<std::mutex> lock(mutex);
    const unsigned int status = answerFor(image, "FILES_GetImageNbElement");
    *count = status == success ? static_cast<unsigned int>(imageOf(image)->elements.size()) : 0;
    return done("FILES_GetImageNbElement" + imageText(image) + " count=" + std::to_string(*count), status);
}

unsigned int FILES_GetImageElement(HANDLE image, unsigned int index, PIMAGEELEMENT element) {
    const std::lock_guard<std::mutex> lock(mutex);
    const std::string call = "FILES_GetImageElement" + imageText(image) + " index=" + std::to_string(index) +
                             (element->Data == nullptr ? " data=null" : " data=set");
    unsigned int status = answerFor(image, "FILES_GetImageElement");
    if (index >= elementsOf(image).size())
        status = badParameter;
    if (status == success) {
        const Element &stored = imageOf(image)->elements[index];
        element->dwAddress = stored.address;
        element->dwDataLength = stored.data.size();
        if (element->Data != nullptr)
            std::copy(stored.data.begin(), stored.data.end(), element->Data);
    }
    return done(call, status);
}

unsigned int FILES_SetImageElement(HANDLE image, unsigned int index, BYTE insert, IMAGEELEMENT element) {
    const std::lock_guard<std::mutex> lock(mutex);
    unsigned int status = answerFor(image, "FILES_SetImageElement");
    if (insert == 0 && index >= elementsOf(image).size())
        status = badParameter;
    if (status == success) {
        std::vector<Element> &elements = imageOf(image)->elements;
        const Element stored{element.dwAddress, std::vector<BYTE>(element.Data, element.Data + element.dwDataLength)};
        if (insert != 0)
            elements.insert(elements.begin() + static_cast<long>(std::min<std::size_t>(index, elements.size())),
                            stored);
        else
            elements[index] = stored;
    }
    return done("FILES_SetImageElement" + imageText(image) + " index=" + std::to_string(index) +
                    " insert=" + std::to_string(insert) + elementText(element),
                status);
}

unsigned int FILES_GetMemoryMapping(const char *path, short *sectors, char *name, short *packetSize, PMAPPING mapping,
                                    BYTE *sectorsPerSector) {
    const std::lock_guard<std::mutex> lock(mutex);
    const unsigned int status = answer("FILES_GetMemoryMapping", 0);
    if (status == 0) {
        *sectors = mapAnswer().sectors;
        std::strcpy(name, mapAnswer().name.c_str());
        *packetSize = mapAnswer().packet;
        *sectorsPerSector = mapAnswer().sectorsPerSector;
        if (mapping != nullptr)
            fillSectors(*mapping);
    }
    return done("FILES_GetMemoryMapping path=" + text(path) + (mapping == nullptr ? " mapping=null" : " mapping=set"),
                status);
}
}
#pragma GCC visibility pop
