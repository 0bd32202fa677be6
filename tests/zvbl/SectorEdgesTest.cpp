// Checksums of whole sectors where a chip tells what hardly any does, and a call that ends within its sectors.

#include "tests/zvbl/SectorsFixture.h"

namespace {

class SectorEdgesTest : public SectorsTest {};

TEST_F(SectorEdgesTest, AnUploadThatFitsIsReadOnce) {
    const auto chip = chipWith(Crc::ours);
    EXPECT_EQ(upload(0, 2 * sector), 0);
    EXPECT_TRUE(isRight(0, 2 * sector));
    EXPECT_EQ(chip->reads, 2 * packets);
}

TEST_F(SectorEdgesTest, AnUploadEndsWithTheFirstSectorThatNeverFits) {
    const auto chip = chipWith(Crc::ours);
    chip->damageAll = true;
    EXPECT_EQ(upload(0, 8 * sector), 5);
    EXPECT_EQ(chip->reads, (4 + 3) * packets);
}

TEST_F(SectorEdgesTest, AnUploadThatNobodyWantsVouchedForIsReadOnce) {
    const auto chip = chipWith(Crc::ours);
    setenv("ZVBL_VERIFY_BY", "read", 1);
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_EQ(chip->reads, packets);
    EXPECT_EQ(chip->questions, 0);
}

TEST_F(SectorEdgesTest, ADifferenceEndsTheSectorsBehindIt) {
    const auto chip = chipWith(Crc::ours);
    data[sector + 5] ^= 1;
    EXPECT_EQ(verify(0, 4 * sector), 19);
    EXPECT_EQ(chip->questions, 3) << "of all, of the first, of the second";
}

// What is compared by reading leaves a gap: no checksum that is known fits what follows it.
TEST_F(SectorEdgesTest, ChecksumsAheadDoNotPassOverAGap) {
    const auto chip = chipWith(Crc::ours);
    EXPECT_EQ(verify(0, sector), 0);
    std::fill_n(data.begin() + 4 * sector, 256, std::uint8_t{0xFF});
    EXPECT_EQ(verify(sector, 6 * sector, true), 0);
    data[7 * sector - 1] ^= 1;
    EXPECT_EQ(verify(5 * sector, 2 * sector), 19);
}

TEST_F(SectorEdgesTest, AChipThatDiesWhileASectorIsReadAgainIs5) {
    const auto chip = chipWith(Crc::ours);
    EXPECT_EQ(SetTimeOut(link, shortPatienceMs), 0);
    chip->damagedReads = {3};
    chip->lastRead = packets + 1;
    EXPECT_EQ(upload(0, sector), 5);
    EXPECT_EQ(chip->reads, packets + 1);
}

TEST_F(SectorEdgesTest, AChecksumThatComesOnlyOnceMakesItReadAThirdTime) {
    const auto chip = chipWith(Crc::droppedLater);
    chip->damagedReads = {3};
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_TRUE(isRight(0, sector));
    EXPECT_EQ(chip->reads, 3 * packets);
}

TEST_F(SectorEdgesTest, SizesThatAreNone) {
    for (const Crc size : {Crc::tinySize, Crc::hugeSize}) {
        const auto chip = chipWith(size);
        EXPECT_EQ(verify(0, sector), 0);
        EXPECT_EQ(chip->sizeQuestions, 3);
        EXPECT_EQ(chip->questions, 0);
        EXPECT_EQ(chip->reads, packets);
        EXPECT_EQ(Interface_Open(link), 0);
    }
}

// If no two lists are the same, the command itself tells.
TEST_F(SectorEdgesTest, ListsThatDoNotAgreeDoNotHideTheCommand) {
    for (const Crc lists : {Crc::listsDiffer, Crc::listedOnce}) {
        const auto chip = chipWith(lists);
        EXPECT_EQ(verify(0, sector), 0);
        EXPECT_EQ(chip->questions, 1);
        EXPECT_EQ(chip->reads, 0);
        EXPECT_EQ(chip->lists, 4) << "one, and three more";
        EXPECT_EQ(Interface_Open(link), 0);
    }
}

} // namespace
