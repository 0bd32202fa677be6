#include "operations/FileTitle.h"

namespace filetitle {

std::string withFile(const std::string &title, const std::string &fileName) {
    return title + "------(" + fileName + ")";
}

bool fileNameOf(const std::string &path, std::string &fileName) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return false;
    fileName = path.substr(slash + 1);
    return true;
}

} // namespace filetitle
