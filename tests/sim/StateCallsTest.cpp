// The file of a chip's memory on a system whose calls fail, and one that was cut or changed by somebody who knows its
// checksum. The calls are caught by the linker.

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "sim/chip/Crc32.h"
#include "sim/program/State.h"
#include "sim/program/StateImage.h"
#include "tests/sim/Rig.h"

namespace {

struct {
    std::string call;
    int error = 0; // 0: nothing is read, or half of it written, and it is no error
} failing;

bool fails(const char *call) {
    if (failing.call != call)
        return false;
    failing.call.clear();
    errno = failing.error;
    return true;
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int __real_open(const char *path, int flags, ...);
ssize_t __real_read(int fd, void *bytes, size_t count);
ssize_t __real_write(int fd, const void *bytes, size_t count);
int __real_fstat(int fd, struct stat *info);
int __real_mkostemp(char *name, int flags);
int __real_fchmod(int fd, mode_t mode);
int __real_fsync(int fd);
int __real_close(int fd);
int __real_rename(const char *from, const char *to);

int __wrap_open(const char *path, int flags, ...) {
    return fails("open") ? -1 : __real_open(path, flags);
}
ssize_t __wrap_read(int fd, void *bytes, size_t count) {
    return fails("read") ? (failing.error ? -1 : 0) : __real_read(fd, bytes, count);
}
ssize_t __wrap_write(int fd, const void *bytes, size_t count) {
    if (!fails("write"))
        return __real_write(fd, bytes, count);
    return failing.error ? -1 : __real_write(fd, bytes, count / 2);
}
int __wrap_fstat(int fd, struct stat *info) {
    return fails("fstat") ? -1 : __real_fstat(fd, info);
}
int __wrap_mkostemp(char *name, int flags) {
    return fails("mkostemp") ? -1 : __real_mkostemp(name, flags);
}
int __wrap_fchmod(int fd, mode_t mode) {
    return fails("fchmod") ? -1 : __real_fchmod(fd, mode);
}
int __wrap_fsync(int fd) {
    return fails("fsync") ? -1 : __real_fsync(fd);
}
int __wrap_close(int fd) {
    const bool failed = fails("close");
    return __real_close(fd) | -failed;
}
int __wrap_rename(const char *from, const char *to) {
    return fails("rename") ? -1 : __real_rename(from, to);
}
}
#pragma GCC visibility pop

namespace sim {
namespace {

class StateCalls : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/zv32-state-XXXXXX";
        directory = mkdtemp(name);
        path = directory + "/chip";
        ASSERT_TRUE(StateFile(path, rig.chip).save(error)) << error;
        old = content();
    }
    void TearDown() override {
        failing.call.clear();
        std::filesystem::remove_all(directory);
    }

    std::string content() const {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    bool loads(const char *call, int failure) {
        Rig other("ZV32F421_16K");
        failing = {call, failure};
        return StateFile(path, other.chip).load(error);
    }
    bool saves(const char *call, int failure) {
        StateFile file(path, rig.chip);
        failing = {call, failure};
        return file.save(error);
    }

    Rig rig{"ZV32F421_16K"};
    std::string directory;
    std::string path;
    std::string old;
    std::string error;
};

TEST_F(StateCalls, Reading) {
    EXPECT_TRUE(loads("read", EINTR)) << error;
    EXPECT_TRUE(loads("open", ENOENT)) << error; // there is none yet
    for (const char *call : {"open", "fstat", "read"}) {
        EXPECT_FALSE(loads(call, EIO)) << call;
        EXPECT_EQ(error, "cannot read \"" + path + "\": Input/output error") << call;
    }
    EXPECT_FALSE(loads("read", 0)); // it was cut meanwhile
    EXPECT_EQ(error, "\"" + path + "\" is no state file, or a damaged one");
}

TEST_F(StateCalls, Writing) {
    EXPECT_TRUE(saves("write", EINTR)) << error;
    EXPECT_TRUE(saves("write", 0)) << error;
    EXPECT_EQ(content(), old);
    for (const char *call : {"mkostemp", "write", "fchmod", "fsync", "close", "rename"}) {
        EXPECT_FALSE(saves(call, ENOSPC)) << call;
        EXPECT_EQ(error, "cannot write \"" + path + "\": No space left on device") << call;
        EXPECT_EQ(content(), old) << call;
        const auto entries = std::filesystem::directory_iterator(directory);
        EXPECT_EQ(std::distance(begin(entries), end(entries)), 1) << call;
    }
}

Bytes signedAnew(Bytes body) {
    const std::uint32_t crc = crc32(body.data(), body.size());
    for (unsigned shift = 0; shift < 32; shift += 8)
        body.push_back(static_cast<std::uint8_t>(crc >> shift));
    return body;
}

Bytes bodyOf(Chip &chip) {
    Bytes body = encodeState(chip);
    body.resize(body.size() - 4);
    return body;
}

TEST_F(StateCalls, AFileThatIsCutIsNone) {
    *rig.chip.sections().front().cells->raw() = 0x12;
    const Bytes body = bodyOf(rig.chip);
    for (std::size_t length = 0; length < body.size(); ++length) {
        Rig other("ZV32F421_16K");
        EXPECT_NE(decodeState(signedAnew({body.begin(), body.begin() + std::ptrdiff_t(length)}), other.chip), "")
            << length;
    }
    Rig other("ZV32F421_16K");
    EXPECT_EQ(decodeState(signedAnew(body), other.chip), "");
    Bytes longer = body;
    longer.push_back(0);
    EXPECT_NE(decodeState(signedAnew(longer), other.chip), "");
}

// A run of content that begins or ends behind the cells is refused, and nothing is written there.
TEST_F(StateCalls, ARunOutsideOfTheCells) {
    Chip::Section flash = rig.chip.sections().front();
    *flash.cells->raw() = 0x12;
    const Bytes body = bodyOf(rig.chip);
    const std::size_t run = 8 + 4 + std::strlen("ZV32F421_16K") + 8; // its address, and behind it its length
    for (const std::size_t at : {run + 1, run + 3, run + 5, run + 7}) {
        Bytes changed = body;
        changed[at] = 0x40;
        Rig other("ZV32F421_16K");
        EXPECT_EQ(decodeState(signedAnew(changed), other.chip),
                  std::string("does not fit: another size of ") + flash.name);
    }
}

// A last stretch of FF that is short is content up to it.
TEST_F(StateCalls, CellsThatEndInAFewBlankOnes) {
    Cells &flash = *rig.chip.sections().front().cells;
    std::fill_n(flash.raw(), flash.size() - 3, std::uint8_t{0});
    Rig other("ZV32F421_16K");
    ASSERT_EQ(decodeState(encodeState(rig.chip), other.chip), "");
    const Cells &read = *other.chip.sections().front().cells;
    EXPECT_TRUE(std::equal(flash.data(), flash.data() + flash.size(), read.data()));
}

} // namespace
} // namespace sim
