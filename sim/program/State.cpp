#include "sim/program/State.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "sim/program/StateImage.h"

namespace sim {

namespace {

// -1 at the first failure.
ssize_t readWhole(int fd, Bytes &bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t length = read(fd, bytes.data() + done, bytes.size() - done);
        if (length == 0)
            break;
        if (length < 0 && errno != EINTR)
            return -1;
        done += static_cast<std::size_t>(length > 0 ? length : 0);
    }
    bytes.resize(done);
    return static_cast<ssize_t>(done);
}

bool writeWhole(int fd, const Bytes &bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t length = write(fd, bytes.data() + done, bytes.size() - done);
        if (length < 0 && errno != EINTR)
            return false;
        done += static_cast<std::size_t>(length > 0 ? length : 0);
    }
    return true;
}

// The mode of a file that is replaced stays; a new one gets what the umask leaves.
mode_t modeFor(const std::string &path) {
    constexpr mode_t permissions = 07777;
    struct stat info {};
    if (stat(path.c_str(), &info) == 0)
        return info.st_mode & permissions;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

bool StateFile::readAll(int fd, Bytes &file, std::string &error) {
    struct stat info {};
    const bool known = fd >= 0 && fstat(fd, &info) == 0;
    if (known && !S_ISREG(info.st_mode)) {
        error = "\"" + m_path + "\" is not a file"; // a pipe or a device would never end
        return false;
    }
    if (known && static_cast<std::uint64_t>(info.st_size) > longestState(m_chip)) {
        error = "\"" + m_path + "\" is too long for a state file of this chip";
        return false;
    }
    file.resize(known ? static_cast<std::size_t>(info.st_size) : 0);
    if (known && readWhole(fd, file) >= 0)
        return true;
    error = "cannot read \"" + m_path + "\": " + std::strerror(errno);
    return false;
}

bool StateFile::load(std::string &error) {
    const int fd = open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0 && errno == ENOENT)
        return true;
    Bytes file;
    const bool read = readAll(fd, file, error);
    if (fd >= 0)
        close(fd);
    if (!read)
        return false;
    const std::string wrong = decodeState(file, m_chip);
    if (!wrong.empty()) {
        error = "\"" + m_path + "\" " + wrong;
        return false;
    }
    m_chip.reset(); // what the option bytes protect holds from power on
    m_everSaved = true;
    m_savedChanges = m_chip.changes();
    return true;
}

// A file of nobody else's: made anew, for its owner alone until it is whole.
bool StateFile::replace(const Bytes &file) const {
    std::string temporary = m_path + ".XXXXXX";
    const int fd = mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool written = writeWhole(fd, file) && fchmod(fd, modeFor(m_path)) == 0 && fsync(fd) == 0;
    int failure = errno;
    if (close(fd) == 0 && written && std::rename(temporary.c_str(), m_path.c_str()) == 0)
        return true;
    failure = written ? errno : failure;
    unlink(temporary.c_str());
    errno = failure;
    return false;
}

bool StateFile::save(std::string &error) {
    const std::uint64_t changes = m_chip.changes();
    if (m_everSaved && changes == m_savedChanges)
        return true;
    if (!replace(encodeState(m_chip))) {
        error = "cannot write \"" + m_path + "\": " + std::strerror(errno);
        return false;
    }
    m_everSaved = true;
    m_savedChanges = changes;
    return true;
}

} // namespace sim
