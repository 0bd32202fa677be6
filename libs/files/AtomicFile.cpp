#include "libs/files/AtomicFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <mutex>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace files {

namespace {

constexpr std::size_t writebackSize = 4 * 1024 * 1024;
constexpr int nameAttempts = 100;
constexpr mode_t privateMode = 0600;
constexpr mode_t newMode = 0666;
constexpr const char *aclAttribute = "system.posix_acl_access";

bool writeAll(int fd, const unsigned char *bytes, std::size_t length) {
    while (length > 0) {
        const ssize_t n = ::write(fd, bytes, length);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        bytes += n;
        length -= static_cast<std::size_t>(n);
    }
    return true;
}

// The kernel's name for an open file, through which a file without a name is given one.
std::string descriptorPath(int fd) {
    return "/proc/self/fd/" + std::to_string(fd);
}

// `directory`/.`base`.<pid>-<attempt>.tmp
std::string temporaryName(const SaveTarget &target, int attempt) {
    std::string base = target.path.substr(target.path.rfind('/') + 1);
    base.resize(std::min<std::size_t>(base.size(), NAME_MAX / 2));
    return target.directory + "/." + base + "." + std::to_string(::getpid()) + "-" + std::to_string(attempt) + ".tmp";
}

// The permissions of a new file, as the kernel would give them.
mode_t modeOfNewFile() {
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    const mode_t mask = ::umask(0077); // there is no way to only read it that works everywhere
    ::umask(mask);
    return newMode & ~mask;
}

} // namespace

AtomicFile::AtomicFile() : m_buffer(new unsigned char[bufferSize]) {}

AtomicFile::~AtomicFile() {
    if (m_fd >= 0)
        ::close(m_fd);
    if (!m_temporary.empty())
        ::unlink(m_temporary.c_str());
}

Status AtomicFile::create(const char *path) {
    const Status located = m_target.locate(path);
    if (located != Status::ok)
        return located;
    const Status opened = openTemporary();
    if (opened == Status::ok && m_target.exists)
        keepPermissions();
    return opened;
}

Status AtomicFile::openTemporary() {
    // What a file without a name may get from the umask and the directory, the kernel knows best.
    const mode_t unnamedMode = m_target.exists ? privateMode : newMode;
    if (::access("/proc/self/fd", X_OK) == 0)
        m_fd = ::open(m_target.directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, unnamedMode);
    for (int i = 0; m_fd < 0 && i < nameAttempts; ++i) {
        const std::string name = temporaryName(m_target, i);
        m_fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateMode);
        if (m_fd >= 0)
            m_temporary = name;
        else if (errno != EEXIST)
            break;
    }
    return m_fd >= 0 ? Status::ok : Status::unableToOpenTempFile;
}

void AtomicFile::keepPermissions() {
    // The owner first: chown clears the set-user-ID bits. A user who may not give files away keeps
    // the file as his own, and then without those bits.
    mode_t mode = m_target.old.st_mode & 07777;
    if (::fchown(m_fd, m_target.old.st_uid, m_target.old.st_gid) != 0) {
        mode &= 0777;
        (void)!::fchown(m_fd, static_cast<uid_t>(-1), m_target.old.st_gid);
    }
    (void)::fchmod(m_fd, mode);
    char acl[4096];
    const ssize_t length = ::getxattr(m_target.path.c_str(), aclAttribute, acl, sizeof acl);
    if (length > 0)
        (void)::fsetxattr(m_fd, aclAttribute, acl, static_cast<std::size_t>(length), 0);
}

Status AtomicFile::write(const void *bytes, std::size_t length) {
    if (m_used + length > bufferSize && flush() != Status::ok)
        return m_failure;
    if (length <= bufferSize) {
        std::memcpy(m_buffer.get() + m_used, bytes, length);
        m_used += length;
    } else {
        put(static_cast<const unsigned char *>(bytes), length);
    }
    return m_failure;
}

Status AtomicFile::fill(unsigned char byte, std::size_t length) {
    while (length > 0 && m_failure == Status::ok) {
        if (m_used == bufferSize && flush() != Status::ok)
            break;
        const std::size_t part = std::min(length, bufferSize - m_used);
        std::memset(m_buffer.get() + m_used, byte, part);
        m_used += part;
        length -= part;
    }
    return m_failure;
}

Status AtomicFile::flush() {
    put(m_buffer.get(), m_used);
    m_used = 0;
    return m_failure;
}

void AtomicFile::put(const unsigned char *bytes, std::size_t length) {
    while (length > 0 && m_failure == Status::ok) {
        const std::size_t part = std::min(length, writebackSize - (m_written - m_started));
        if (!writeAll(m_fd, bytes, part)) {
            m_failure = Status::generalError;
            return;
        }
        bytes += part;
        length -= part;
        m_written += part;
        if (m_written - m_started < writebackSize)
            continue;
        // The disk gets to work while the next part is made; what it did not begin, fsync does.
        (void)::sync_file_range(m_fd, static_cast<off_t>(m_started), static_cast<off_t>(m_written - m_started),
                                SYNC_FILE_RANGE_WRITE);
        m_started = m_written;
    }
}

Status AtomicFile::commit() {
    if (flush() != Status::ok)
        return m_failure;
    if (!m_temporary.empty() && !m_target.exists)
        (void)::fchmod(m_fd, modeOfNewFile());
    if (::fsync(m_fd) != 0)
        return Status::generalError;
    const Status linked = link();
    return linked == Status::ok ? syncDirectory() : linked;
}

// Gives the file without a name this one. A file server may have done so and lost its answer.
bool AtomicFile::takesName(const std::string &name) const {
    if (::linkat(AT_FDCWD, descriptorPath(m_fd).c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
        return true;
    const int error = errno;
    struct stat ours;
    struct stat named;
    const bool isOurs = ::fstat(m_fd, &ours) == 0 && ::lstat(name.c_str(), &named) == 0 &&
                        ours.st_dev == named.st_dev && ours.st_ino == named.st_ino;
    errno = error;
    return isOurs;
}

// Gives the finished file its name.
Status AtomicFile::link() {
    if (m_temporary.empty()) {
        if (!m_target.exists && takesName(m_target.path))
            return Status::ok;
        for (int i = 0; m_temporary.empty() && i < nameAttempts; ++i) {
            const std::string name = temporaryName(m_target, i);
            if (takesName(name))
                m_temporary = name;
            else if (errno != EEXIST)
                break;
        }
        if (m_temporary.empty())
            return Status::unableToOpenTempFile;
    }
    if (::rename(m_temporary.c_str(), m_target.path.c_str()) != 0)
        return Status::unableToOpenFile;
    m_temporary.clear();
    return Status::ok;
}

Status AtomicFile::syncDirectory() const {
    const int fd = ::open(m_target.directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return Status::ok; // a directory may be writable and not readable
    // Some file systems cannot flush a directory and say so with EINVAL.
    const bool lost = ::fsync(fd) != 0 && errno == EIO;
    ::close(fd);
    return lost ? Status::generalError : Status::ok;
}

} // namespace files
