#include "look/Image.h"

#include "files/CFiles.h"
#include "foundation/Result.h"

namespace {

// An image of the file library, freed at the end of the block.
class Handle {
public:
    Handle() = default;
    ~Handle() {
        if (image != nullptr)
            FILES_DestroyImage(&image);
    }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    HANDLE image = nullptr;
};

ImageRange rangeOf(HANDLE image, unsigned int index) {
    IMAGEELEMENT element{};
    FILES_GetImageElement(image, index, &element);
    ImageRange range{static_cast<std::uint32_t>(element.dwAddress), {}};
    range.bytes.resize(element.dwDataLength);
    element.Data = range.bytes.data();
    FILES_GetImageElement(image, index, &element);
    return range;
}

} // namespace

ImageRead readImage(const std::string &path, bool program) {
    ImageRead read;
    Handle handle;
    const unsigned int status = FILES_ImageFromFile(path.c_str(), &handle.image, program ? 1 : 0);
    if (status != CFiles::FILES_NOERROR) {
        read.refusal = CResult::GetInfoStringName(CResult::Convert(status));
        return read;
    }
    read.isRead = true;
    unsigned int count = 0;
    FILES_GetImageNbElement(handle.image, &count);
    for (unsigned int i = 0; i < count; ++i)
        read.ranges.push_back(rangeOf(handle.image, i));
    return read;
}
