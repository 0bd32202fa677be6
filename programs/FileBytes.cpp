#include "programs/FileBytes.h"

#include <cerrno>
#include <cstdint>
#include <cstring>

#include <fcntl.h>
#include <nettle/sha2.h>
#include <sys/stat.h>
#include <unistd.h>

#include "programs/Descriptor.h"
#include "programs/Status.h"
#include "programs/Text.h"

namespace {

[[noreturn]] void refuse(const std::string &path, const std::string &why) {
    throw Refusal(notAcceptable, path + ": " + why);
}

void accept(const std::string &path, const struct stat &info, std::size_t most) {
    if (S_ISLNK(info.st_mode))
        refuse(path, "a symbolic link, and no regular file");
    if (!S_ISREG(info.st_mode))
        refuse(path, "not a regular file");
    if (static_cast<std::uint64_t>(info.st_size) > most)
        refuse(path, "larger than " + std::to_string(most) + " bytes");
}

std::string readAll(int descriptor, const std::string &path, std::size_t most) {
    std::string bytes;
    char part[65536];
    for (;;) {
        const ssize_t got = read(descriptor, part, sizeof part);
        if (got == 0)
            return bytes;
        if (got < 0 && errno != EINTR)
            refuse(path, std::strerror(errno));
        if (got > 0)
            bytes.append(part, static_cast<std::size_t>(got));
        if (bytes.size() > most)
            refuse(path, "larger than " + std::to_string(most) + " bytes");
    }
}

std::string readRegular(int directory, const std::string &name, int link, std::size_t most) {
    struct stat info;
    if (fstatat(directory, name.c_str(), &info, link == O_NOFOLLOW ? AT_SYMLINK_NOFOLLOW : 0) != 0)
        refuse(name, std::strerror(errno));
    accept(name, info, most);
    // It may be another by now. Without O_NONBLOCK a FIFO that nobody writes to would hold us here for ever.
    const Descriptor file(openat(directory, name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY | link));
    if (file.number() < 0 || fstat(file.number(), &info) != 0)
        refuse(name, std::strerror(errno));
    accept(name, info, most);
    return readAll(file.number(), name, most);
}

} // namespace

std::string bytesOfFile(const std::string &path, std::size_t most) {
    return readRegular(AT_FDCWD, path, 0, most);
}

std::string bytesOfFileIn(int directory, const std::string &name, std::size_t most) {
    return readRegular(directory, name, O_NOFOLLOW, most);
}

std::string sha256Of(const std::string &bytes) {
    sha256_ctx context;
    sha256_init(&context);
    sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t *>(bytes.data()));
    std::uint8_t digest[SHA256_DIGEST_SIZE];
    sha256_digest(&context, sizeof digest, digest);
    return hexOf(digest, sizeof digest);
}
