#include "libs/files/InputFile.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace files {

InputFile::~InputFile() {
    if (m_fd >= 0)
        ::close(m_fd);
}

Status InputFile::open(const char *path) {
    // Without O_NONBLOCK a FIFO that nobody writes to would hold us here for ever.
    m_fd = ::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    struct stat info;
    if (m_fd < 0 || ::fstat(m_fd, &info) != 0 || !S_ISREG(info.st_mode))
        return Status::unableToOpenFile;
    m_size = static_cast<std::uint64_t>(info.st_size);
    return Status::ok;
}

void InputFile::open(const void *bytes, std::size_t length) {
    m_bytes = static_cast<const char *>(bytes);
    m_left = m_size = length;
}

Status InputFile::read(void *target, std::size_t wanted, std::size_t &got) {
    got = 0;
    if (m_fd < 0) {
        got = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, m_left));
        std::copy_n(m_bytes, got, static_cast<char *>(target));
        m_bytes += got;
        m_left -= got;
        return Status::ok;
    }
    while (got < wanted) {
        const ssize_t n = ::read(m_fd, static_cast<char *>(target) + got, wanted - got);
        if (n == 0)
            break;
        if (n > 0)
            got += static_cast<std::size_t>(n);
        else if (errno != EINTR)
            return Status::unableToOpenFile;
    }
    return Status::ok;
}

} // namespace files
