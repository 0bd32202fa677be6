#include "look/ImageFacts.h"

#include <vector>

#include "device/FilesInc.h"
#include "look/Status.h"
#include "programs/FileBytes.h"

namespace {

constexpr unsigned int noError = 0x12340000;
constexpr std::size_t mostBytes = std::size_t(1) << 30; // an image of 256 MB as text

// An image of the file library, freed at the end of the block.
class OpenImage {
public:
    explicit OpenImage(const std::string &path) {
        const unsigned int status = FILES_ImageFromFile(path.c_str(), &m_image, 1);
        if (status != noError)
            throw Refusal(notAcceptable, path + ": no image that can be read (" + std::to_string(status) + ")");
    }
    ~OpenImage() { FILES_DestroyImage(&m_image); }
    OpenImage(const OpenImage &) = delete;
    OpenImage &operator=(const OpenImage &) = delete;

    std::vector<IMAGEELEMENT> ranges() const {
        unsigned int count = 0;
        FILES_GetImageNbElement(m_image, &count);
        std::vector<IMAGEELEMENT> all(count);
        for (unsigned int i = 0; i < count; ++i)
            FILES_GetImageElement(m_image, i, &all[i]);
        return all;
    }

private:
    HANDLE m_image = nullptr;
};

} // namespace

void tellOfImage(const std::string &path, Section &report) {
    const std::string bytes = bytesOfFile(path, mostBytes);
    const OpenImage image(path);
    report.fact("size", {bytes.size(), std::to_string(bytes.size()) + " bytes"});
    report.fact("sha-256", sha256Of(bytes));
    std::vector<std::vector<Value>> rows;
    for (const IMAGEELEMENT &range : image.ranges()) {
        const auto first = static_cast<unsigned int>(range.dwAddress);
        const auto length = static_cast<unsigned int>(range.dwDataLength);
        rows.push_back({addressValue(first), addressValue(first + length - 1), Value(length)});
    }
    report.table("ranges", {"first", "last", "bytes"}, std::move(rows));
}
