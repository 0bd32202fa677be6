#include "look/FileBytes.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <nettle/sha2.h>
#include <sys/stat.h>
#include <unistd.h>

#include "look/Status.h"

namespace {

class Descriptor {
public:
    // Without O_NONBLOCK a FIFO that nobody writes to would hold us here for ever.
    explicit Descriptor(const std::string &path)
        : number(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)) {}
    ~Descriptor() {
        if (number >= 0)
            close(number);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    const int number;
};

[[noreturn]] void refuse(const std::string &path, const std::string &why) {
    throw Refusal(notAcceptable, path + ": " + why);
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

} // namespace

std::string bytesOfFile(const std::string &path, std::size_t most) {
    const Descriptor file(path);
    struct stat info;
    if (file.number < 0 || fstat(file.number, &info) != 0)
        refuse(path, std::strerror(errno));
    if (!S_ISREG(info.st_mode))
        refuse(path, "not a regular file");
    return readAll(file.number, path, most);
}

std::string sha256Of(const std::string &bytes) {
    sha256_ctx context;
    sha256_init(&context);
    sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t *>(bytes.data()));
    std::uint8_t digest[SHA256_DIGEST_SIZE];
    sha256_digest(&context, sizeof digest, digest);
    std::string text;
    for (const std::uint8_t byte : digest) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    return text;
}
