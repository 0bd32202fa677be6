#include "app/FileNames.h"

#include "device/ImageSuffixes.h"
#include "foundation/ShareParameter.h"

namespace {

// Whether the part after the last "/" ends in the given upper-case letters, whatever its own case. A bare file
// name does not: the path has to be given.
bool baseNameEndsIn(const std::string &fileName, const std::string &end) {
    if (fileName.rfind('/') == std::string::npos || fileName.size() < end.size())
        return false;
    return ShareParameter::ToUpper(fileName.substr(fileName.size() - end.size())) == end;
}

bool isBareSuffix(const std::string &fileName, std::size_t length) {
    return fileName.size() - (fileName.rfind('/') + 1) == length;
}

} // namespace

bool IsValidFileName(const std::string &fileName) {
    for (const ImageSuffix &suffix : imageSuffixes) {
        // MEANT: no dot is asked for; "/x/hex" is a name, "/x/s19" is too short for one.
        const std::string end = ShareParameter::ToUpper(suffix.text + 1);
        const bool isTooShort = suffix.format == ImageFormat::sRecord && isBareSuffix(fileName, 3);
        if (baseNameEndsIn(fileName, end) && !isTooShort)
            return true;
    }
    return false;
}

bool IsValidOTPFileName(const std::string &fileName) {
    return baseNameEndsIn(fileName, "ZVTP");
}
