// What the file library makes of system calls that fail, or do only a part, each by itself. SaveFaultTest has the
// saving step by step.

#include <cerrno>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "libs/files/AtomicFile.h"
#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

// One call that fails with that error, so many times; 0 for a read that finds nothing.
struct {
    std::string call;
    int error = 0;
    int times = 0;
    int after = 0; // calls that work before it
} fault;

std::string appearing; // somebody makes this file just before ours gets its name

bool befalls(const char *call) {
    if (fault.times == 0 || fault.call != call || fault.after-- > 0)
        return false;
    --fault.times;
    errno = fault.error;
    return true;
}

} // namespace

bool befallsWrite() {
    return befalls("write");
}
bool befallsOpen() {
    return befalls("open");
}
bool befallsSync() {
    return befalls("fsync");
}
bool befallsLink() {
    if (!appearing.empty())
        writeFile(std::exchange(appearing, ""), "another");
    return befalls("linkat");
}

extern "C" {

__attribute__((visibility("default"))) ssize_t read(int fd, void *bytes, size_t length) {
    return befalls("read") ? (fault.error == 0 ? 0 : -1) : ::syscall(SYS_read, fd, bytes, length);
}

__attribute__((visibility("default"))) int fstat(int fd, struct stat *info) noexcept {
    return befalls("fstat") ? -1 : static_cast<int>(::syscall(SYS_fstat, fd, info));
}

__attribute__((visibility("default"))) int access(const char *path, int mode) noexcept {
    return befalls("access") ? -1 : static_cast<int>(::syscall(SYS_access, path, mode));
}

__attribute__((visibility("default"))) int fchown(int fd, uid_t user, gid_t group) noexcept {
    return befalls("fchown") ? -1 : static_cast<int>(::syscall(SYS_fchown, fd, user, group));
}

__attribute__((visibility("default"))) ssize_t getxattr(const char *path, const char *name, void *value,
                                                        size_t size) noexcept {
    if (!befalls("getxattr"))
        return ::syscall(SYS_getxattr, path, name, value, size);
    static_cast<char *>(value)[0] = 2; // an access list that says nothing
    return 4;
}
}

namespace {

class SystemFaults : public testing::Test {
protected:
    ~SystemFaults() override { fault = {}; }

    static void fail(const char *call, int error, int times = 1, int after = 0) { fault = {call, error, times, after}; }

    // The status of a load while the call fails.
    unsigned int loaded(const std::string &name, const std::string &content) {
        writeFile(dir / name, content);
        Handle image;
        return FILES_ImageFromFile((dir / name).c_str(), image.out(), programImage);
    }

    unsigned int saved(const std::string &name, const Pieces &pieces) {
        Handle image;
        EXPECT_EQ(FILES_CreateImage(image.out(), 1), noError);
        for (std::size_t i = 0; i < pieces.size(); ++i)
            EXPECT_EQ(image.insert(static_cast<unsigned>(i), pieces[i].address, pieces[i].bytes), noError);
        return FILES_ImageToFile((dir / name).c_str(), image.get());
    }

    const TempDir dir;
};

TEST_F(SystemFaults, AFileThatCannotBeReadIsNoImage) {
    const std::string hex = ihex(0, 0, {1, 2}) + "\n" + ihex(1, 0, {}) + "\n";
    const std::string srecord = srec(1, 0, {1, 2}) + "\n" + srec(9, 0, {}) + "\n";
    for (const auto &[name, content] : {std::pair{"a.hex", hex}, {"a.s19", srecord}, {"a.bin", std::string("ab")}}) {
        fail("fstat", EIO);
        EXPECT_EQ(loaded(name, content), unableToOpenFile) << name;
        fail("read", EIO);
        EXPECT_EQ(loaded(name, content), unableToOpenFile) << name;
        fail("read", EINTR);
        EXPECT_EQ(loaded(name, content), noError) << name;
    }
}

TEST_F(SystemFaults, AMapThatCannotBeReadHasNoSectors) {
    const std::string path = dir / "a.ZVmap";
    writeFile(path, "[Product]\nName=A\n[Sector0]\nSize=400\nCount=1\nAddress=8000000\n");
    short count = 0, packet = 0;
    char name[4096];
    BYTE perSector = 0;
    const auto read = [&] { return FILES_GetMemoryMapping(path.c_str(), &count, name, &packet, nullptr, &perSector); };
    fail("read", EIO);
    EXPECT_NE(read(), 0u);
}

TEST_F(SystemFaults, AnInterruptedWriteGoesOn) {
    fail("write", EINTR);
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), noError);
    EXPECT_EQ(readBytes(dir / "o.bin"), pattern(100));
}

TEST_F(SystemFaults, WithoutProcAFileHasANameFromTheBeginning) {
    fail("access", EACCES);
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), noError);
    EXPECT_EQ(dir.entries(), std::vector<std::string>{"o.bin"});
}

TEST_F(SystemFaults, WhereEveryNameIsTakenNothingIsSaved) {
    fail("open", EEXIST, 101); // the file without a name, and a hundred with one
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), unableToOpenTempFile);
    fail("linkat", EEXIST, 101);
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), unableToOpenTempFile);
    EXPECT_TRUE(dir.entries().empty());
}

TEST_F(SystemFaults, AFileThatAppearsMeanwhileIsReplaced) {
    appearing = dir / "o.bin";
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), noError);
    EXPECT_EQ(readBytes(dir / "o.bin"), pattern(100));
    EXPECT_EQ(dir.entries(), std::vector<std::string>{"o.bin"});
}

TEST_F(SystemFaults, AnOwnerThatCannotBeKeptTakesTheSetUserBitsWithHim) {
    writeFile(dir / "o.bin", "old");
    ASSERT_EQ(::chmod((dir / "o.bin").c_str(), 04755), 0);
    fail("fchown", EPERM);
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), noError);
    struct stat info {};
    ASSERT_EQ(::stat((dir / "o.bin").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0755u);
}

TEST_F(SystemFaults, AnAccessListThatCannotBeKeptIsNoFailure) {
    writeFile(dir / "o.bin", "old");
    fail("getxattr", 0);
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), noError);
    EXPECT_EQ(fault.times, 0);
}

TEST_F(SystemFaults, ADirectoryThatCannotBeFlushedIsNoFailureUnlessItsDiskIs) {
    fail("fsync", EINVAL);
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), generalError) << "the file itself";
    fail("fsync", EINVAL, 1, 1);
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), noError);
    EXPECT_EQ(fault.times, 0);
    fail("fsync", EIO, 1, 1);
    EXPECT_EQ(saved("o.bin", {{0, pattern(100)}}), generalError);
}

// Beyond the buffer, in front of it and in a gap of it.
TEST_F(SystemFaults, AFullDiskEndsTheSavingWhereverItIsNoticed) {
    constexpr std::size_t large = 8 * 1024 * 1024;
    for (const Pieces &pieces : {Pieces{{0, pattern(large)}}, Pieces{{0, pattern(100)}, {large, pattern(100)}}}) {
        fail("write", ENOSPC, 1);
        EXPECT_EQ(saved("o.bin", pieces), generalError);
        EXPECT_TRUE(dir.entries().empty());
    }
    // The record of the upper address is the one that does not fit any more, for one of the lengths at least.
    for (std::size_t first = 1; first <= 4; ++first) {
        Pieces pieces{{0, pattern(first)}};
        for (std::uint64_t page = 1; page < 10000; ++page)
            pieces.push_back({page << 16, {1}});
        fail("write", ENOSPC, 1);
        EXPECT_EQ(saved("o.hex", pieces), generalError) << first;
    }
}

TEST_F(SystemFaults, AFailureOfAFileStays) {
    files::AtomicFile file;
    ASSERT_EQ(file.create((dir / "o").c_str()), files::Status::ok);
    const Bytes bytes = pattern(8 * 1024 * 1024);
    fail("write", ENOSPC, 1);
    EXPECT_EQ(file.write(bytes.data(), bytes.size()), files::Status::generalError);
    EXPECT_EQ(file.write(bytes.data(), 10), files::Status::generalError);
    EXPECT_EQ(file.fill(0, 10), files::Status::generalError);
    EXPECT_EQ(file.commit(), files::Status::generalError);

    files::AtomicFile full; // of the buffer, which the next bytes don't fit into
    ASSERT_EQ(full.create((dir / "p").c_str()), files::Status::ok);
    ASSERT_EQ(full.write(bytes.data(), 200000), files::Status::ok);
    fail("write", ENOSPC, 1);
    EXPECT_EQ(full.write(bytes.data(), 100000), files::Status::generalError);
}

} // namespace
