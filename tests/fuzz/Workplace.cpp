#include "tests/fuzz/Workplace.h"

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

#include "tests/fuzz/Target.h"

namespace fuzz {

const libfiles::TempDir &workplace() {
    static const libfiles::TempDir directory = [] {
        if (::access("/dev/shm", W_OK) == 0)
            ::setenv("TMPDIR", "/dev/shm", 1);
        return libfiles::TempDir();
    }();
    return directory;
}

void fill(const std::string &path, const std::string &content) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const ssize_t written = ::write(fd, content.data(), content.size());
    require(written == static_cast<ssize_t>(content.size()) && ::close(fd) == 0, "the input is written");
}

} // namespace fuzz
