#include "sim/program/LogFile.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace sim {

bool LogFile::open(const std::string &path, std::string &error) {
    constexpr mode_t mode = 0666;
    m_lines.fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode);
    if (m_lines.fd >= 0)
        return true;
    error = "cannot write \"" + path + "\"" + (errno == ENXIO ? ": nobody reads" : "");
    return false;
}

LogFile::Lines::~Lines() {
    if (fd >= 0)
        close(fd);
}

// Called at the end of each line.
int LogFile::Lines::sync() {
    const std::string text = str();
    str({});
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t length = write(fd, text.data() + done, text.size() - done);
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0)
            break;
        done += static_cast<std::size_t>(length);
    }
    return 0;
}

} // namespace sim
