// FILES_ImageToFile through symbolic links: whose links it follows, and what others may see meanwhile.

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;
namespace fs = std::filesystem;

namespace {

const Bytes newBytes = pattern(1000, 9);

unsigned int save(const std::string &path) {
    Handle image;
    EXPECT_EQ(FILES_CreateImage(image.out(), 1), noError);
    EXPECT_EQ(image.insert(0, 0x08000000, newBytes), noError);
    return FILES_ImageToFile(path.c_str(), image.get());
}

// A shared directory like /tmp, and a file elsewhere that a link in it leads to.
class SharedDirectory : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(dir / "common");
        fs::create_directory(dir / "own");
        ASSERT_EQ(::chmod((dir / "common").c_str(), 01777), 0);
        ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
        writeFile(dir / "own/victim.bin", std::string("old"));
    }

    void link(const std::string &target, const std::string &name, unsigned owner) {
        fs::create_symlink(target, dir / name);
        ASSERT_EQ(::lchown((dir / name).c_str(), owner, owner), 0);
    }

    const TempDir dir;
};

#define ONLY_ROOT()       \
    if (::geteuid() != 0) \
    GTEST_SKIP() << "only root makes files of several users"

constexpr unsigned stranger = 4711;

TEST_F(SharedDirectory, ALinkOfItsOwnIsFollowed) {
    fs::create_symlink(dir / "own/victim.bin", dir / "common/back.bin");
    EXPECT_EQ(save(dir / "common/back.bin"), noError);
    EXPECT_TRUE(fs::is_symlink(dir / "common/back.bin"));
    EXPECT_EQ(readBytes(dir / "own/victim.bin"), newBytes);
}

TEST_F(SharedDirectory, ALinkOfAStrangerIsNot) {
    ONLY_ROOT();
    link(dir / "own/victim.bin", "common/back.bin", stranger);
    EXPECT_EQ(save(dir / "common/back.bin"), unableToOpenFile);
    EXPECT_EQ(readFile(dir / "own/victim.bin"), "old");
}

TEST_F(SharedDirectory, ALinkOfAStrangerIsNotFollowedFromAnotherLinkEither) {
    ONLY_ROOT();
    link(dir / "own/victim.bin", "common/back.bin", stranger);
    fs::create_symlink("../common/back.bin", dir / "own/mine.bin");
    EXPECT_EQ(save(dir / "own/mine.bin"), unableToOpenFile);
    EXPECT_EQ(readFile(dir / "own/victim.bin"), "old");
}

TEST_F(SharedDirectory, ALinkOfAStrangerToNothingMakesNoFile) {
    ONLY_ROOT();
    link(dir / "own/new.bin", "common/back.bin", stranger);
    EXPECT_EQ(save(dir / "common/back.bin"), unableToOpenFile);
    EXPECT_FALSE(fs::exists(dir / "own/new.bin"));
}

// Whoever owns the directory decides about it anyway.
TEST_F(SharedDirectory, ALinkOfTheDirectorysOwnerIsFollowed) {
    ONLY_ROOT();
    ASSERT_EQ(::chown((dir / "own").c_str(), stranger, stranger), 0);
    link("victim.bin", "own/back.bin", stranger);
    EXPECT_EQ(save(dir / "own/back.bin"), noError);
    EXPECT_EQ(readBytes(dir / "own/victim.bin"), newBytes);
}

TEST_F(SharedDirectory, AnotherUserIsRefusedRootsFile) {
    ONLY_ROOT();
    link(dir / "own/victim.bin", "common/back.bin", nobody);
    EXPECT_EQ(unprivileged([&] { return save(dir / "common/back.bin"); }), unableToOpenFile);
    EXPECT_EQ(readFile(dir / "own/victim.bin"), "old");
}

TEST_F(SharedDirectory, LinksThatLeadRoundInACircle) {
    fs::create_symlink("b.bin", dir / "own/a.bin");
    fs::create_symlink("a.bin", dir / "own/b.bin");
    EXPECT_EQ(save(dir / "own/a.bin"), unableToOpenFile);
}

TEST_F(SharedDirectory, SeveralLinksLeadToOneFile) {
    fs::create_symlink("../own/second.bin", dir / "common/first.bin");
    fs::create_symlink(dir / "own/victim.bin", dir / "own/second.bin");
    EXPECT_EQ(save(dir / "common/first.bin"), noError);
    EXPECT_TRUE(fs::is_symlink(dir / "own/second.bin"));
    EXPECT_EQ(readBytes(dir / "own/victim.bin"), newBytes);
}

TEST(SaveLink, ALinkToADirectoryOfTheRootIsNoFile) {
    const TempDir dir;
    std::filesystem::create_symlink("/tmp", dir / "o.bin");
    Handle image;
    ASSERT_EQ(FILES_CreateImage(image.out(), 1), noError);
    ASSERT_EQ(image.insert(0, 0, {1}), noError);
    EXPECT_EQ(FILES_ImageToFile((dir / "o.bin").c_str(), image.get()), unableToOpenFile);
}

} // namespace
