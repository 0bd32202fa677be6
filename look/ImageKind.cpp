#include "look/ImageKind.h"

#include "foundation/ShareParameter.h"

namespace {

constexpr ImageKind kinds[] = {
    {ImageFormat::binary, "binary"}, {ImageFormat::intelHex, "Intel HEX"}, {ImageFormat::sRecord, "Motorola S-record"}};

} // namespace

const ImageKind *imageKindOf(const std::string &path) {
    const std::string lower = ShareParameter::ToLower(path);
    for (const ImageSuffix &suffix : imageSuffixes) {
        const std::string text = suffix.text;
        if (lower.size() < text.size() || lower.compare(lower.size() - text.size(), text.size(), text) != 0)
            continue;
        for (const ImageKind &kind : kinds)
            if (kind.format == suffix.format)
                return &kind;
    }
    return nullptr;
}
