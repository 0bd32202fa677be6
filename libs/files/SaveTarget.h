#pragma once

#include <string>

#include <sys/stat.h>

#include "libs/files/Status.h"

namespace files {

// The file that a save goes to.
struct SaveTarget {
    std::string path;      // with symbolic links at its end resolved
    std::string directory; // of the path, "." if it names none
    bool exists = false;
    struct stat old; // of the target, when it exists

    // unableToOpenFile for what a save must not replace: a file that may not be written or is none, a
    // link to nothing, and a link that belongs neither to the caller nor to the owner of its
    // directory. The kernel's own rule for links in shared directories holds as well.
    Status locate(const char *name);
};

} // namespace files
