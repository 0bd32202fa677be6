#include "libs/files/SaveTarget.h"

#include <climits>

#include <fcntl.h>
#include <unistd.h>

namespace files {

namespace {

constexpr int maxLinks = 40; // as many as the kernel follows

std::string directoryOf(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return path.substr(0, slash == 0 ? 1 : slash);
}

// Whoever else may make entries in a directory could lead the caller to a file of his with a link.
bool isTrusted(const std::string &path, const struct stat &link) {
    struct stat directory;
    return link.st_uid == ::geteuid() ||
           (::stat(directoryOf(path).c_str(), &directory) == 0 && link.st_uid == directory.st_uid);
}

// Leads the path to where the link points.
bool follow(std::string &path) {
    char text[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), text, sizeof text);
    if (length <= 0 || length == static_cast<ssize_t>(sizeof text))
        return false;
    const std::string aim(text, static_cast<std::size_t>(length));
    path = aim.front() == '/' ? aim : directoryOf(path) + "/" + aim;
    return true;
}

// Whether the name leads to that regular file and may be written. rename would not ask.
bool isWritable(const char *name, const struct stat &info) {
    if (!S_ISREG(info.st_mode))
        return false;
    const int fd = ::open(name, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat opened;
    const bool same = ::fstat(fd, &opened) == 0 && opened.st_dev == info.st_dev && opened.st_ino == info.st_ino;
    ::close(fd);
    return same;
}

} // namespace

Status SaveTarget::locate(const char *name) {
    path = name;
    for (int links = 0; links <= maxLinks; ++links) {
        directory = directoryOf(path);
        if (::lstat(path.c_str(), &old) != 0)
            return links == 0 ? Status::ok : Status::unableToOpenFile;
        if (!S_ISLNK(old.st_mode)) {
            exists = isWritable(name, old);
            return exists ? Status::ok : Status::unableToOpenFile;
        }
        if (!isTrusted(path, old) || !follow(path))
            return Status::unableToOpenFile;
    }
    return Status::unableToOpenFile;
}

} // namespace files
