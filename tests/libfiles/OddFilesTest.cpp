// Paths that are no image: each is refused at once, none hangs or fills the memory.

#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;
namespace fs = std::filesystem;

namespace {

const char *const suffixes[] = {".bin", ".hex", ".s19", ".srec"};

unsigned int open(const std::string &path, int program = programImage) {
    Handle image;
    const unsigned int status = FILES_ImageFromFile(path.c_str(), image.out(), program);
    EXPECT_EQ(image.get() != nullptr, status == noError);
    return status;
}

TEST(OddFiles, suffixes) {
    const TempDir dir;
    struct {
        const char *name;
        int program;
        unsigned int status;
    } const cases[] = {
        {"a.bin", programImage, noError},          {"a.BIN", programImage, noError},
        {"a.Bin", userSystemDataImage, noError},   {"a.hex", programImage, badFormat},
        {"a.HeX", programImage, badFormat},        {"a.HEX", userSystemDataImage, badFormat},
        {"a.s19", programImage, badFormat},        {"a.S19", programImage, badFormat},
        {"a.s19", userSystemDataImage, badFormat}, {"a.srec", programImage, badFormat},
        {"a.SREC", programImage, badFormat},       {"a.srec", userSystemDataImage, badFormat},
        {"a.hex.txt", programImage, badSuffix},    {"a", programImage, badSuffix},
        {"a.", programImage, badSuffix},           {"bin", programImage, badSuffix},
        {"ahex", programImage, badSuffix},         {"a.elf", programImage, badSuffix},
        {"a.bin.hex", programImage, badFormat},
    };
    for (const auto &one : cases) {
        writeFile(dir / one.name, std::string("x"));
        EXPECT_EQ(open(dir / one.name, one.program), one.status) << one.name;
    }
    EXPECT_EQ(open("", programImage), badSuffix);
}

TEST(OddFiles, AWrongSuffixIsNotWrittenEither) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    EXPECT_EQ(FILES_ImageToFile((dir / "a.txt").c_str(), image.get()), badSuffix);
    EXPECT_TRUE(dir.entries().empty());
}

TEST(OddFiles, Missing) {
    const TempDir dir;
    for (const char *suffix : suffixes)
        EXPECT_EQ(open(dir / (std::string("no") + suffix)), unableToOpenFile);
}

TEST(OddFiles, Directory) {
    const TempDir dir;
    for (const char *suffix : suffixes) {
        const std::string path = dir / (std::string("d") + suffix);
        fs::create_directory(path);
        EXPECT_EQ(open(path), unableToOpenFile);
    }
}

TEST(OddFiles, FifoWithoutAWriter) {
    const TempDir dir;
    for (const char *suffix : suffixes) {
        const std::string path = dir / (std::string("f") + suffix);
        ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
        EXPECT_EQ(open(path), unableToOpenFile);
    }
}

TEST(OddFiles, Devices) {
    const TempDir dir;
    for (const char *device : {"/dev/zero", "/dev/null", "/dev/full"})
        for (const char *suffix : suffixes) {
            const std::string path = dir / (std::string("z") + suffix);
            fs::create_symlink(device, path);
            EXPECT_EQ(open(path), unableToOpenFile);
            fs::remove(path);
        }
}

TEST(OddFiles, Socket) {
    const TempDir dir;
    const std::string path = dir / "s.bin";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::strcpy(address.sun_path, path.c_str());
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(open(path), unableToOpenFile);
    ::close(fd);
}

TEST(OddFiles, LinksInACircle) {
    const TempDir dir;
    fs::create_symlink(dir / "b.hex", dir / "a.hex");
    fs::create_symlink(dir / "a.hex", dir / "b.hex");
    EXPECT_EQ(open(dir / "a.hex"), unableToOpenFile);
}

TEST(OddFiles, Unreadable) {
    const TempDir dir;
    fs::permissions(dir.path(), fs::perms::all);
    writeFile(dir / "a.hex", std::string(":00000001FF\n"));
    EXPECT_EQ(unprivileged([&] { return open(dir / "a.hex") == noError ? 0u : 1u; }), 0u);
    fs::permissions(dir / "a.hex", fs::perms::none);
    EXPECT_EQ(unprivileged([&] { return open(dir / "a.hex"); }), unableToOpenFile);
}

// A sparse file of zeros is no record, however long it is.
TEST(OddFiles, ALongLineOfNothing) {
    const TempDir dir;
    for (const char *suffix : {".hex", ".s19"}) {
        const std::string path = dir / (std::string("l") + suffix);
        writeFile(path, std::string());
        fs::resize_file(path, 8ull << 30);
        EXPECT_EQ(open(path), badFormat);
    }
}

// The sanitizers take more address space than any limit leaves them.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(OddFiles, AnImageThatTheMemoryHasNoRoomFor) {
    const TempDir dir;
    for (const char *name : {"a.bin", "a.hex", "a.s19"}) {
        writeFile(dir / name, std::string());
        fs::resize_file(dir / name, 256 << 20); // without a block on the disk
        const int status = inChild([&] {
            const rlimit limit{100 << 20, 100 << 20};
            ::setrlimit(RLIMIT_AS, &limit);
            return static_cast<int>(open(dir / name));
        });
        ASSERT_TRUE(WIFEXITED(status)) << name;
        EXPECT_EQ(WEXITSTATUS(status), static_cast<int>(unexpectedError)) << name;
    }
}
#endif

} // namespace
