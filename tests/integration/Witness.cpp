#include "tests/integration/Witness.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace {

constexpr std::uint8_t blank = 0xFF;

std::string outputOf(const std::string &command) {
    // None of our preloads belongs into the witness.
    unsetenv("LD_PRELOAD");
    FILE *pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("cannot run " + command);
    std::string text;
    char part[256];
    for (std::size_t n = 0; (n = fread(part, 1, sizeof part, pipe)) > 0;)
        text.append(part, n);
    if (pclose(pipe) != 0)
        throw std::runtime_error("failed: " + command);
    return text;
}

// A file that lasts as long as the object.
struct TemporaryFile {
    TemporaryFile() {
        std::string pattern = std::filesystem::temp_directory_path() / "witness-XXXXXX";
        directory = mkdtemp(pattern.data());
    }
    ~TemporaryFile() { std::filesystem::remove_all(directory); }
    std::filesystem::path directory;
};

} // namespace

Bytes program(std::size_t length, unsigned seed) {
    Bytes bytes(length);
    for (std::size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<std::uint8_t>((i * 7 + (i >> 8) * 13 + seed * 31) % blank);
    return bytes;
}

Bytes filledUp(Bytes bytes, std::size_t length) {
    bytes.resize(length, blank);
    return bytes;
}

std::uint32_t witnessCrc(const Bytes &bytes) {
    const TemporaryFile temporary;
    const std::string file = writeBinary(temporary.directory / "image.bin", bytes);
    const std::string answer =
        outputOf("python3 -c 'import sys, zlib; print(zlib.crc32(open(sys.argv[1], \"rb\").read()))' " + file);
    return static_cast<std::uint32_t>(std::stoul(answer));
}

std::string writeBinary(const std::filesystem::path &file, const Bytes &bytes) {
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush())
        throw std::runtime_error("cannot write " + file.string());
    return file;
}

std::string writeHex(const std::filesystem::path &file, const Bytes &bytes, std::uint32_t address) {
    std::filesystem::path binary = file;
    binary += ".bin";
    writeBinary(binary, bytes);
    outputOf("objcopy -I binary -O ihex --change-addresses " + std::to_string(address) + " " + binary.string() + " " +
             file.string());
    return file;
}
