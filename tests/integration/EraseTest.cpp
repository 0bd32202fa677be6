// Erasing blocks of 64 KB.

#include "tests/integration/LibraryTest.h"

namespace {
constexpr unsigned short selector = 0xFFFB;
constexpr unsigned blockSize = 0x10000;
const Bytes marker = {1, 2, 3, 4};
const Bytes blank(4, 0xFF);
} // namespace

class BlockEraseTest : public LibraryTest {
protected:
    // A marker at both ends of the block, and on the other side of each end.
    void mark(unsigned block) {
        for (const unsigned address : {block - 4, block, block + blockSize - 4, block + blockSize})
            EXPECT_EQ(write(address, marker), done);
    }
    void expectAlone(unsigned block, const Bytes &content) {
        EXPECT_EQ(read(block - 4, 4), marker);
        EXPECT_EQ(read(block, 4), content);
        EXPECT_EQ(read(block + blockSize - 4, 4), content);
        EXPECT_EQ(read(block + blockSize, 4), marker);
    }
};

TEST_F(BlockEraseTest, TakesTheBlockAndNothingBesides) {
    for (const char *name : {"ZV32F437_4032K", "ZV32F437_1024K"}) {
        Interface_Close(link);
        connect(name);
        const unsigned block = flashBase + 3 * blockSize;
        mark(block);
        EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, block), done) << name;
        expectAlone(block, blank);
        EXPECT_EQ(write(block, marker), done) << "it can be programmed";
    }
}

TEST_F(BlockEraseTest, OfSpim) {
    connect("ZV32F437_4032K");
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, spimBase), refused) << "not enabled yet";
    EXPECT_EQ(ZVBL_EnableBank3(link, 0x91, 1 << 20, 0), done);
    const unsigned block = spimBase + blockSize;
    mark(block);
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, block), done);
    expectAlone(block, blank);
}

TEST_F(BlockEraseTest, WhereNoBlockStarts) {
    connect("ZV32F437_4032K");
    const unsigned block = flashBase + blockSize;
    mark(block);
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, block + 4096), refused);
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, flashBase + 63 * blockSize), refused) << "after the last";
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, ramBase), refused);
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, 1, block), badArgument);
    expectAlone(block, marker);
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, flashBase + 62 * blockSize), done) << "the last";
}

TEST_F(BlockEraseTest, OneProtectedSectorSavesTheBlock) {
    connect("ZV32F437_4032K");
    const unsigned block = flashBase + blockSize;
    mark(block);
    BYTE bit = 20; // its sector lies in the middle of the block
    EXPECT_EQ(ZVBL_ERASEPROGRAM_PROTECT(link, 1, &bit), done);
    EXPECT_EQ(initAgain(), done);
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, block), refused);
    expectAlone(block, marker);
}

TEST_F(BlockEraseTest, AChipWithTheOldEraseCommandHasNone) {
    connect("ZV32F403_2_256K");
    BYTE scratch = 0;
    Commands commands{};
    EXPECT_EQ(ZVBL_GET(link, &scratch, &commands), done);
    EXPECT_EQ(ZVBL_BLOCK_ERASE(link, selector, flashBase), commandRefused);
}
