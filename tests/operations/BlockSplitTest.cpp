#include "operations/download/BlockSplit.h"

#include <gtest/gtest.h>

namespace {

constexpr uint block = 4096;
constexpr uint sector = 1024; // four a block

struct Case {
    const char *what;
    QList<int> in, sectors, blocks;
};

const Case cases[] = {
    {"nothing", {}, {}, {}},
    {"one block", {4, 5, 6, 7}, {}, {1}},
    {"two blocks", {0, 1, 2, 3, 4, 5, 6, 7}, {}, {0, 1}},
    {"a leading part", {2, 3, 4, 5, 6, 7}, {2, 3}, {1}},
    {"a trailing part", {4, 5, 6, 7, 8, 9}, {8, 9}, {1}},
    {"both parts", {3, 4, 5, 6, 7, 8}, {3, 8}, {1}},
    {"less than a block", {5, 6}, {5, 6}, {}},
    {"the beginning of a block", {4, 5, 6}, {4, 5, 6}, {}},
    {"two runs", {4, 5, 6, 7, 12, 13}, {12, 13}, {1}},
    {"a list out of order gives shorter runs", {6, 7, 4, 5}, {6, 7, 4, 5}, {}},
};

} // namespace

TEST(BlockSplitTest, Table) {
    for (const Case &one : cases) {
        const BlockSplit split = splitIntoBlocks(one.in, block, sector);
        EXPECT_EQ(split.sectors, one.sectors) << one.what;
        EXPECT_EQ(split.blocks, one.blocks) << one.what;
    }
}

TEST(BlockSplitTest, WithoutBlocksAllStaysSectors) {
    const BlockSplit split = splitIntoBlocks({1, 2, 3}, 0, sector);
    EXPECT_EQ(split.sectors, (QList<int>{1, 2, 3}));
    EXPECT_TRUE(split.blocks.isEmpty());
}
