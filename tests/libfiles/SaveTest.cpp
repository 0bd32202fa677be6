// FILES_ImageToFile and the disk: what becomes of the old file, of permissions, links and limits.

#include <csignal>
#include <filesystem>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;
namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

const Bytes newBytes = pattern(1 << 20, 9);

unsigned int save(const std::string &path, const Bytes &bytes = newBytes) {
    Handle image;
    EXPECT_EQ(FILES_CreateImage(image.out(), 1), noError);
    EXPECT_EQ(image.insert(0, 0x08000000, bytes), noError);
    return FILES_ImageToFile(path.c_str(), image.get());
}

mode_t modeOf(const std::string &path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0);
    return info.st_mode & 07777;
}

TEST(Save, ReplacesTheOldFile) {
    const TempDir dir;
    writeFile(dir / "o.bin", std::string("old"));
    EXPECT_EQ(save(dir / "o.bin"), noError);
    EXPECT_EQ(readBytes(dir / "o.bin"), newBytes);
    EXPECT_EQ(dir.entries(), Names{"o.bin"});
}

TEST(Save, MakesANewFile) {
    const TempDir dir;
    EXPECT_EQ(save(dir / "o.bin"), noError);
    EXPECT_EQ(readBytes(dir / "o.bin"), newBytes);
    EXPECT_EQ(dir.entries(), Names{"o.bin"});
}

TEST(Save, ARelativePathWithoutADirectory) {
    const TempDir dir;
    const int status = inChild([&] {
        return ::chdir(dir.path().c_str()) == 0 && save("o.bin") == noError && save("o.bin") == noError ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(dir.entries(), Names{"o.bin"});
}

TEST(Save, ALongName) {
    const TempDir dir;
    const std::string name = std::string(251, 'n') + ".bin";
    EXPECT_EQ(save(dir / name), noError);
    EXPECT_EQ(save(dir / name), noError);
    EXPECT_EQ(dir.entries(), Names{name});
}

TEST(Save, KeepsPermissions) {
    const TempDir dir;
    for (const mode_t mode : {0600, 0640, 0666, 0755, 0777}) {
        writeFile(dir / "o.hex", std::string("old"));
        ASSERT_EQ(::chmod((dir / "o.hex").c_str(), mode), 0);
        EXPECT_EQ(save(dir / "o.hex"), noError);
        EXPECT_EQ(modeOf(dir / "o.hex"), mode);
    }
}

TEST(Save, ANewFileFollowsTheUmask) {
    const TempDir dir;
    const mode_t old = ::umask(027);
    EXPECT_EQ(save(dir / "o.hex"), noError);
    ::umask(old);
    EXPECT_EQ(modeOf(dir / "o.hex"), 0640u);
}

TEST(Save, KeepsTheOwner) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root gives files away";
    const TempDir dir;
    writeFile(dir / "o.hex", std::string("old"));
    ASSERT_EQ(::chown((dir / "o.hex").c_str(), nobody, nobody), 0);
    EXPECT_EQ(save(dir / "o.hex"), noError);
    struct stat info {};
    ASSERT_EQ(::stat((dir / "o.hex").c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, nobody);
    EXPECT_EQ(info.st_gid, nobody);
}

TEST(Save, FollowsALink) {
    const TempDir dir;
    fs::create_directory(dir / "real");
    writeFile(dir / "real/o.bin", std::string("old"));
    fs::create_symlink("real/o.bin", dir / "link.bin");
    EXPECT_EQ(save(dir / "link.bin"), noError);
    EXPECT_TRUE(fs::is_symlink(dir / "link.bin"));
    EXPECT_EQ(readBytes(dir / "real/o.bin"), newBytes);
    EXPECT_EQ(dir.entries(), (Names{"link.bin", "real"}));
}

TEST(Save, ALinkToNothing) {
    const TempDir dir;
    fs::create_symlink("nothing.bin", dir / "link.bin");
    EXPECT_EQ(save(dir / "link.bin"), unableToOpenFile);
    EXPECT_TRUE(fs::is_symlink(dir / "link.bin"));
    EXPECT_EQ(dir.entries(), Names{"link.bin"});
}

TEST(Save, NeitherADirectoryNorADeviceIsReplaced) {
    const TempDir dir;
    fs::create_directory(dir / "d.bin");
    fs::create_symlink("/dev/null", dir / "n.bin");
    EXPECT_EQ(save(dir / "d.bin"), unableToOpenFile);
    EXPECT_EQ(save(dir / "d.bin/"), badSuffix);
    EXPECT_EQ(save(dir / "n.bin"), unableToOpenFile);
    EXPECT_EQ(dir.entries(), (Names{"d.bin", "n.bin"}));
}

TEST(Save, NoSuchDirectory) {
    EXPECT_EQ(save("/nowhere/o.bin"), unableToOpenTempFile);
}

TEST(Save, ADirectoryThatMayNotBeWritten) {
    const TempDir dir;
    writeFile(dir / "old.bin", std::string("old"));
    ASSERT_EQ(::chmod((dir / "old.bin").c_str(), 0666), 0);
    ASSERT_EQ(::chmod(dir.path().c_str(), 0555), 0);
    EXPECT_EQ(unprivileged([&] { return save(dir / "new.bin"); }), unableToOpenTempFile);
    EXPECT_EQ(unprivileged([&] { return save(dir / "old.bin"); }), unableToOpenTempFile);
    EXPECT_EQ(readFile(dir / "old.bin"), "old");
    EXPECT_EQ(dir.entries(), Names{"old.bin"});
}

// rename would not ask.
TEST(Save, AFileThatMayNotBeWritten) {
    const TempDir dir;
    writeFile(dir / "o.bin", std::string("old"));
    ASSERT_EQ(::chmod((dir / "o.bin").c_str(), 0444), 0);
    ASSERT_EQ(::chmod(dir.path().c_str(), 0777), 0);
    EXPECT_EQ(unprivileged([&] { return save(dir / "o.bin"); }), unableToOpenFile);
    EXPECT_EQ(readFile(dir / "o.bin"), "old");
    EXPECT_EQ(dir.entries(), Names{"o.bin"});
}

// A limit on the file size stands for a full disk: the write comes back short, then fails.
TEST(Save, NoRoom) {
    for (const char *name : {"o.bin", "o.hex", "o.s19"})
        for (const bool exists : {true, false}) {
            const TempDir dir;
            if (exists)
                writeFile(dir / name, std::string("old"));
            const int status = inChild([&] {
                ::signal(SIGXFSZ, SIG_IGN);
                const rlimit limit{700001, 700001};
                ::setrlimit(RLIMIT_FSIZE, &limit);
                return static_cast<int>(save(dir / name));
            });
            EXPECT_TRUE(WIFEXITED(status));
            EXPECT_EQ(WEXITSTATUS(status), static_cast<int>(generalError));
            EXPECT_EQ(dir.entries(), exists ? Names{name} : Names{});
            if (exists)
                EXPECT_EQ(readFile(dir / name), "old");
        }
}

TEST(Save, KilledBySignalWhileWriting) {
    for (const bool exists : {true, false}) {
        const TempDir dir;
        if (exists)
            writeFile(dir / "o.bin", std::string("old"));
        const int status = inChild([&] {
            const rlimit limit{700001, 700001};
            ::setrlimit(RLIMIT_FSIZE, &limit); // SIGXFSZ ends the process
            return static_cast<int>(save(dir / "o.bin"));
        });
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(dir.entries(), exists ? Names{"o.bin"} : Names{});
        if (exists)
            EXPECT_EQ(readFile(dir / "o.bin"), "old");
    }
}

// A file can be read and written back under its own name.
TEST(Save, OverTheFileThatWasRead) {
    const TempDir dir;
    writeFile(dir / "o.bin", newBytes);
    Handle image;
    ASSERT_EQ(FILES_ImageFromFile((dir / "o.bin").c_str(), image.out(), programImage), noError);
    EXPECT_EQ(FILES_ImageToFile((dir / "o.bin").c_str(), image.get()), noError);
    EXPECT_EQ(readBytes(dir / "o.bin"), newBytes);
}

// An upload that selects nothing must not take the old file away.
TEST(Save, AnImageWithoutElementsIsRefused) {
    const TempDir dir;
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    for (const char *name : {"o.bin", "o.hex", "o.s19", "o.srec"}) {
        EXPECT_EQ(FILES_ImageToFile((dir / name).c_str(), image.get()), badParameter);
        EXPECT_TRUE(dir.entries().empty());
        writeFile(dir / name, std::string("old"));
        EXPECT_EQ(FILES_ImageToFile((dir / name).c_str(), image.get()), badParameter);
        EXPECT_EQ(readFile(dir / name), "old");
        fs::remove(dir / name);
    }
}

} // namespace
