#include "line/job/Directory.h"

#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "programs/FileBytes.h"
#include "programs/Status.h"

namespace {

constexpr int openFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void refuse(const std::string &name, const std::string &why) {
    throw Refusal(notAcceptable, name + ": " + why);
}

std::vector<std::string> partsOf(const std::string &name) {
    std::vector<std::string> parts(1);
    for (const char c : name)
        if (c == '/')
            parts.emplace_back();
        else
            parts.back() += c;
    for (const std::string &part : parts)
        if (part.empty() || part == "." || part == "..")
            refuse(name, "must name a file in or below the directory of the job");
    return parts;
}

} // namespace

Directory::Directory(const std::string &fileInIt) {
    const std::size_t slash = fileInIt.rfind('/');
    const std::string path = slash == std::string::npos ? "." : fileInIt.substr(0, slash + 1);
    m_number = open(path.c_str(), openFlags);
    if (m_number < 0)
        refuse(path, std::strerror(errno));
}

Directory::~Directory() {
    close(m_number);
}

std::string Directory::read(const std::string &name, std::size_t most) const {
    const std::vector<std::string> parts = partsOf(name);
    int here = dup(m_number);
    for (std::size_t i = 0; i + 1 < parts.size() && here >= 0; ++i) {
        const int below = openat(here, parts[i].c_str(), openFlags | O_NOFOLLOW);
        const int reason = errno;
        close(here);
        here = below;
        errno = reason;
    }
    if (here < 0)
        refuse(name, errno == ENOTDIR || errno == ELOOP ? "goes through what is no directory" : std::strerror(errno));
    try {
        std::string bytes = bytesOfFileIn(here, parts.back(), most);
        close(here);
        return bytes;
    } catch (...) {
        close(here);
        throw;
    }
}
