#include "foundation/TraceFile.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// O_NONBLOCK: a FIFO that nobody reads must not hold up the link.
constexpr int flags = O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
constexpr mode_t usualMode = 0644;

std::string directoryOf(const std::string &path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

bool isTrusted(const struct stat &link, const std::string &path) {
    struct stat directory {};
    if (stat(directoryOf(path).c_str(), &directory) != 0)
        return false;
    const bool othersMayWrite = (directory.st_mode & (S_IWGRP | S_IWOTH)) != 0;
    return !othersMayWrite || link.st_uid == geteuid() || link.st_uid == directory.st_uid;
}

} // namespace

int openTraceFile(const std::string &path, std::string &why) {
    struct stat node {};
    const bool isLink = lstat(path.c_str(), &node) == 0 && S_ISLNK(node.st_mode);
    if (isLink && !isTrusted(node, path)) {
        why = "it is a link that somebody else made";
        return -1;
    }
    // One that becomes a link in this moment is not followed either.
    const int file = open(path.c_str(), flags | (isLink ? 0 : O_NOFOLLOW), usualMode);
    if (file < 0)
        why = strerrordesc_np(errno);
    return file;
}
