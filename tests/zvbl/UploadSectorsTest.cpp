// Whole sectors that are read: the checksum of the chip vouches for them.

#include "tests/zvbl/SectorsFixture.h"

namespace {

class UploadSectorsTest : public SectorsTest {};

class ForeignCrcUploadTest : public UploadSectorsTest, public ::testing::WithParamInterface<SectorChip::Crc> {};

class NoCrcUploadTest : public UploadSectorsTest, public ::testing::WithParamInterface<SectorChip::Crc> {};

// Once a verify has found it out, what is read is taken as it is; before, nothing fits.
TEST_P(ForeignCrcUploadTest, AnUploadIsTakenAsItIsReadWhenThatIsKnown) {
    const auto chip = chipWith(GetParam());
    EXPECT_EQ(upload(0, sector), 5);
    EXPECT_EQ(chip->reads, 4 * packets);
    data = memory;
    EXPECT_EQ(verify(0, sector), 0);
    EXPECT_FALSE(traced("# nothing vouches for what is read"));
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_TRUE(isRight(0, sector));
    EXPECT_TRUE(traced("# nothing vouches for what is read"));
}

TEST_P(NoCrcUploadTest, AnUploadIsTakenAsItIsRead) {
    const auto chip = chipWith(GetParam());
    EXPECT_EQ(upload(0, 2 * sector), 0);
    EXPECT_TRUE(isRight(0, 2 * sector));
    EXPECT_TRUE(traced("# nothing vouches for what is read"));
}

TEST_F(UploadSectorsTest, WhatBeginsAndEndsWithinASectorIsThreePieces) {
    const auto chip = chipWith(Crc::ours);
    EXPECT_EQ(upload(sector / 2, 2 * sector), 0);
    EXPECT_TRUE(isRight(sector / 2, 2 * sector));
    EXPECT_EQ(chip->questions, 1);
}

TEST_F(UploadSectorsTest, AnUploadIsReadTwiceWhereTheChecksumDoesNotCome) {
    const auto chip = chipWith(Crc::dropped);
    chip->damagedReads = {3};
    EXPECT_EQ(upload(0, sector), 5) << "two readings that differ";
    EXPECT_EQ(chip->reads, 2 * packets);
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_TRUE(isRight(0, sector));
}

// The list of commands has no checksum: a damaged one hides the command, and nothing would vouch for anything.
TEST_F(UploadSectorsTest, AListThatWasDamagedIsAskedForAgain) {
    const auto chip = chipWith(Crc::hiddenOnce);
    chip->damagedReads = {3};
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_EQ(chip->lists, 2);
    EXPECT_EQ(chip->reads, 2 * packets);
    EXPECT_TRUE(isRight(0, sector));
}

TEST_F(UploadSectorsTest, ACommandThatTwoListsDoNotHaveIsNotThere) {
    const auto chip = chipWith(Crc::notListed);
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_EQ(chip->lists, 2);
    EXPECT_EQ(chip->questions, 0);
    EXPECT_EQ(chip->reads, 2 * packets) << "taken as it is";
}

TEST_F(UploadSectorsTest, ASizeThatWasDamagedIsAskedForAgain) {
    const auto chip = chipWith(Crc::sizeLost);
    chip->damagedReads = {3};
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_EQ(chip->sizeQuestions, 3);
    EXPECT_TRUE(isRight(0, sector));
}

// It may have been the question that was damaged.
TEST_F(UploadSectorsTest, WhatIsRefusedIsReadTwice) {
    const auto chip = chipWith(Crc::refusedCount);
    chip->damagedReads = {3};
    EXPECT_EQ(upload(0, sector), 5) << "two readings that differ";
    EXPECT_EQ(chip->reads, 2 * packets);
}

TEST_F(UploadSectorsTest, WithoutASizeAllIsReadTwice) {
    const auto chip = chipWith(Crc::sizeNotTold);
    chip->damagedReads = {3};
    EXPECT_EQ(upload(0, 2 * sector), 5) << "two readings that differ";
    EXPECT_EQ(upload(0, 2 * sector), 0);
    EXPECT_TRUE(isRight(0, 2 * sector));
}

TEST_F(UploadSectorsTest, AChipThatDiesIs5ForAnUploadToo) {
    const auto chip = chipWith(Crc::deadly);
    EXPECT_EQ(upload(0, sector), 5);
}

// A reply of READ has no checksum of its own.
TEST_F(UploadSectorsTest, AnUploadThatWasDamagedIsReadAgain) {
    const auto chip = chipWith(Crc::ours);
    chip->damagedReads = {3, 2 * packets + 1, 5 * packets + 2};
    EXPECT_EQ(upload(0, sector), 0);
    EXPECT_EQ(chip->reads, 2 * packets);
    EXPECT_TRUE(isRight(0, sector));
    EXPECT_TRUE(traced("# what was read does not fit its checksum"));
    EXPECT_EQ(upload(sector - 4, 4 + 4 * sector), 0);
    EXPECT_TRUE(isRight(sector, 4 * sector));
}

TEST_F(UploadSectorsTest, AnUploadThatNeverFitsIs5) {
    const auto chip = chipWith(Crc::ours);
    chip->damageAll = true;
    EXPECT_EQ(upload(0, sector), 5);
    EXPECT_EQ(chip->reads, 4 * packets);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ForeignCrcUploadTest,
                         ::testing::Values(SectorChip::Crc::otherPolynomial, SectorChip::Crc::otherStart,
                                           SectorChip::Crc::alwaysTheSame));

INSTANTIATE_TEST_SUITE_P(Kinds, NoCrcUploadTest,
                         ::testing::Values(SectorChip::Crc::notListed, SectorChip::Crc::sizeNotTold,
                                           SectorChip::Crc::oddSize, SectorChip::Crc::refused,
                                           SectorChip::Crc::refusedCount, SectorChip::Crc::dropped));

} // namespace
