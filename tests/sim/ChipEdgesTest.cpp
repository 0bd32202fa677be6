// What a chip refuses at the edges of its memory, and what of its external flash.

#include <gtest/gtest.h>

#include "libs/zvbl/wire/Wire.h"
#include "tests/sim/Rig.h"

namespace sim {
namespace {

constexpr std::uint32_t ram = 0x20000000;

class ChipEdges : public ::testing::Test {
protected:
    Rig rig{"ZV32F403A_1024K"};
    Chip &chip = rig.chip;
};

TEST_F(ChipEdges, NoSector) {
    EXPECT_FALSE(chip.eraseSectorAt(0).done());
    EXPECT_FALSE(chip.eraseSectorAt(ram).done());
    EXPECT_TRUE(chip.eraseSectorAt(wire::flashBase + 5).done());
}

TEST_F(ChipEdges, NoBlock) {
    EXPECT_FALSE(chip.eraseBlock(ram).done());
    EXPECT_FALSE(chip.eraseBlock(0x1FFFF000).done());
    EXPECT_FALSE(chip.eraseBlock(wire::flashBase + 4).done());
    EXPECT_TRUE(chip.eraseBlock(wire::flashBase).done());
}

TEST_F(ChipEdges, NoRunOfSectors) {
    EXPECT_FALSE(chip.checkCrc(wire::flashBase, 0).done());
    EXPECT_FALSE(chip.checkCrc(ram, 1).done());
    EXPECT_FALSE(chip.checkCrc(wire::flashBase + 4, 1).done());
    EXPECT_TRUE(chip.checkCrc(wire::flashBase, 1).done());
    EXPECT_EQ(chip.crc(ram - 1, 1), 0U); // of what cannot be read
}

TEST_F(ChipEdges, OptionBytesOfAnotherLength) {
    Bytes options = chip.userData();
    options.pop_back();
    EXPECT_FALSE(chip.writeUserData(options).done());
}

} // namespace
} // namespace sim
