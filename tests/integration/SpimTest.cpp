// SPIM: pins, both types, sizes.

#include "tests/integration/LibraryTest.h"

namespace {
constexpr unsigned megabyte = 1 << 20;
constexpr unsigned sectorSize = 4096;
} // namespace

class SpimTest : public LibraryTest, public testing::WithParamInterface<int> {};

TEST_P(SpimTest, IsMemoryOnceItIsEnabled) {
    connect("ZV32F403A_1024K");
    const Bytes image = program(2 * sectorSize);
    EXPECT_EQ(write(spimBase, image), refused);
    EXPECT_EQ(erase(firstSpimSector), refused);
    EXPECT_EQ(ZVBL_EnableBank3(link, static_cast<BYTE>(GetParam()), megabyte, 0), done);
    EXPECT_EQ(write(spimBase, image), done);
    EXPECT_EQ(erase(firstSpimSector + 1), done);
    EXPECT_EQ(read(spimBase, 2 * sectorSize),
              filledUp(Bytes(image.begin(), image.begin() + sectorSize), 2 * sectorSize));
    EXPECT_EQ(ZVBL_ERASE(link, 0xFFFC, nullptr, 0), done);
    EXPECT_EQ(read(spimBase, sectorSize), Bytes(sectorSize, 0xFF));
}

INSTANTIATE_TEST_SUITE_P(Types, SpimTest, testing::Values(0x90, 0x91));

TEST_F(SpimTest, SizesAndTypes) {
    connect("ZV32F403A_1024K", {"--spim", "2"});
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x92, megabyte, 0), refused);
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x90, 2 * megabyte + sectorSize, 0), refused) << "more than the board has";
    EXPECT_EQ(erase(firstSpimSector), refused);
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x90, megabyte, 0), done);
    EXPECT_EQ(erase(firstSpimSector + 255), done);
    EXPECT_EQ(erase(firstSpimSector + 256), refused);
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x90, 0, 0), done) << "all there is";
    EXPECT_EQ(erase(firstSpimSector + 511), done);
    EXPECT_EQ(erase(firstSpimSector + 512), refused);
}

TEST_F(SpimTest, AResetTurnsItOffAndKeepsItsContent) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x91, megabyte, 0), done);
    EXPECT_EQ(write(spimBase, {1, 2, 3, 4}), done);
    EXPECT_EQ(ZVBL_ResetMCU(link), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(write(spimBase + 4, {1, 2, 3, 4}), refused);
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x91, megabyte, 0), done);
    EXPECT_EQ(read(spimBase, 8), (Bytes{1, 2, 3, 4, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST_F(SpimTest, Pins) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(ZVBL_SPIMREMAP(link, 0), done);
    EXPECT_EQ(ZVBL_SPIMREMAP(link, 1), done);
    EXPECT_EQ(ZVBL_SPIMREMAP(link, 2), refused);
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x90, megabyte, 0), done);
}

TEST_F(SpimTest, NothingOfItWithoutSpim) {
    connect("ZV32F403A_1024K", {"--spim", "0"});
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x90, 0, 0), refused) << "an empty board";
    Interface_Close(link);
    connect("ZV32F415_256K");
    EXPECT_NE(ZVBL_SPIMREMAP(link, 1), done);
    EXPECT_NE(ZVBL_EnableBank3(link, 0x90, megabyte, 0), done);
    EXPECT_EQ(write(spimBase, {1, 2, 3, 4}), refused);
}
