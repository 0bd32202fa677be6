// Whole sectors, compared by the checksum that the chip computes of them.

#include "tests/zvbl/SectorsFixture.h"

namespace {

// Byte by byte, on an erased chip.

TEST_F(SectorsTest, AWholeSectorIsOneQuestion) {
    const Script script = {{"00 FF", "79 02 21 11 AC 79"},
                           {"AC 53", "79"},
                           {"08 00 00 00 08", "79"},
                           {"00 00 00", "79 00 00 08 00 08"}, // no sector: how large is one?
                           {"AC 53", "79"},
                           {"08 00 08 00 00", "79"},
                           {"00 01 01", "79 3F 55 D1 7F C4"},
                           {"AC 53", "79"},
                           {"08 00 00 00 08", "79"},
                           {"00 02 02", "79 F1 54 67 0A C8"}};
    const zvbl::Bytes erased(2 * sector, 0xFF);
    BYTE version = 0;
    Commands commands;
    EXPECT_EQ(play(script,
                   [&] {
                       BYTE *const bytes = const_cast<BYTE *>(erased.data());
                       EXPECT_EQ(ZVBL_GET(link, &version, &commands), 0);
                       EXPECT_EQ(ZVBL_VERIFY(link, base + sector, bytes, sector, 0), 0);
                       return ZVBL_VERIFY(link, base, bytes, 2 * sector, 0);
                   }),
              0);
}

TEST_F(SectorsTest, EqualSectorsAreNotRead) {
    const auto chip = chipWith(Crc::ours);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(verify(i * sector, sector), 0);
    EXPECT_EQ(chip->sizeQuestions, 1);
    EXPECT_EQ(chip->questions, 1);
    EXPECT_EQ(chip->questionsOfEach, 1) << "of the second and the two after it";
    EXPECT_EQ(verify(0, 8 * sector), 0);
    EXPECT_EQ(chip->questions, 3) << "four neighbours share one";
    EXPECT_EQ(chip->reads, 0);
}

TEST_F(SectorsTest, WhatIsNoWholeSectorIsRead) {
    const auto chip = chipWith(Crc::ours);
    EXPECT_EQ(verify(sector - 256, 256 + 2 * sector + 4), 0);
    EXPECT_EQ(chip->questions, 1);
    EXPECT_EQ(chip->reads, 2);
    EXPECT_EQ(verify(4, sector - 8), 0);
    EXPECT_EQ(chip->questions, 1);
}

TEST_F(SectorsTest, ADifferenceIsFoundByReading) {
    const auto chip = chipWith(Crc::ours);
    data[3 * sector + 700] ^= 1;
    EXPECT_EQ(verify(3 * sector, sector), 19);
    EXPECT_EQ(chip->questions, 1);
    EXPECT_EQ(chip->reads, 4) << "up to the packet, and that twice";
    chip->reads = 0;
    EXPECT_EQ(verify(0, 8 * sector), 19);
    EXPECT_EQ(chip->reads, 4) << "of one sector";
    EXPECT_EQ(verify(4 * sector, sector), 0);
    EXPECT_EQ(chip->reads, 4) << "the checksum is still believed";
}

class ForeignCrcTest : public SectorsTest, public ::testing::WithParamInterface<SectorChip::Crc> {};

TEST_P(ForeignCrcTest, CostsOneSectorOfReading) {
    const auto chip = chipWith(GetParam());
    EXPECT_EQ(verify(0, sector), 0);
    EXPECT_EQ(chip->reads, packets);
    EXPECT_EQ(chip->questions, 2) << "the first answer may have been damaged";
    EXPECT_EQ(verify(sector, 2 * sector), 0);
    EXPECT_EQ(chip->reads, 3 * packets);
    EXPECT_EQ(chip->questions, 2) << "it is not asked again";
    EXPECT_TRUE(traced("# the chip computes another checksum: it is not asked again"));
    data[3 * sector] ^= 0x80;
    EXPECT_EQ(verify(3 * sector, sector), 19);
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(verify(0, sector), 0);
    EXPECT_EQ(chip->questions, 2) << "not before the chip has told its commands";
}

TEST_P(ForeignCrcTest, OnManySectorsAtOnceToo) {
    const auto chip = chipWith(GetParam());
    EXPECT_EQ(verify(0, 4 * sector), 0);
    EXPECT_EQ(chip->questions, 3);
    EXPECT_EQ(chip->reads, 4 * packets);
}

TEST_P(ForeignCrcTest, ADifferenceIsADifference) {
    const auto chip = chipWith(GetParam());
    data[sector - 1] ^= 1;
    EXPECT_EQ(verify(0, sector), 19);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ForeignCrcTest,
                         ::testing::Values(SectorChip::Crc::otherPolynomial, SectorChip::Crc::otherStart,
                                           SectorChip::Crc::alwaysTheSame));

// Two bytes of an answer that changed places, say: its check byte does not see it.
TEST_F(SectorsTest, AChecksumThatWasDamagedOnceIsNoForeignOne) {
    const auto chip = chipWith(Crc::spoiltOnce);
    EXPECT_EQ(verify(0, sector), 0);
    EXPECT_EQ(chip->questions, 2);
    EXPECT_EQ(verify(0, sector), 0);
    EXPECT_EQ(chip->questions, 3) << "it is still asked";
    EXPECT_EQ(chip->reads, packets);
}

class NoCrcTest : public SectorsTest, public ::testing::WithParamInterface<SectorChip::Crc> {};

TEST_P(NoCrcTest, ReadingDecides) {
    const auto chip = chipWith(GetParam());
    EXPECT_EQ(verify(0, sector), 0);
    EXPECT_EQ(chip->reads, packets);
    data[2 * sector + 5] ^= 0x10;
    EXPECT_EQ(verify(sector, 2 * sector), 19);
}

INSTANTIATE_TEST_SUITE_P(Kinds, NoCrcTest,
                         ::testing::Values(SectorChip::Crc::notListed, SectorChip::Crc::sizeNotTold,
                                           SectorChip::Crc::oddSize, SectorChip::Crc::refused,
                                           SectorChip::Crc::refusedCount, SectorChip::Crc::dropped));

TEST_F(SectorsTest, ACommandThatIsDroppedHalfWayIsNotAskedAgain) {
    const auto chip = chipWith(Crc::dropped);
    EXPECT_EQ(verify(0, sector), 0);
    const int asked = chip->questions;
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(verify(sector, 3 * sector), 0);
    EXPECT_EQ(chip->questions, asked);
    EXPECT_TRUE(traced("# the chip gives no checksum: it is not asked again"));
}

TEST_F(SectorsTest, AChipThatDiesIs5) {
    const auto chip = chipWith(Crc::deadly);
    EXPECT_EQ(verify(0, sector), 5);
    EXPECT_EQ(chip->reads, 0);
}

// A packet of FF is not compared. What the chip holds there makes the checksum another one, which proves
// nothing about how it is computed.
TEST_F(SectorsTest, BlankPacketsAreLeftOutAndTheChecksumStaysBelieved) {
    const auto chip = chipWith(Crc::ours);
    std::fill(data.begin() + 256, data.begin() + 512, std::uint8_t{0xFF});
    EXPECT_EQ(verify(0, sector, true), 0);
    EXPECT_EQ(chip->reads, packets - 1);
    EXPECT_EQ(verify(0, sector, false), 19);
    chip->reads = 0;
    EXPECT_EQ(verify(sector, sector, true), 0);
    EXPECT_EQ(chip->reads, 0);
    const int questions = chip->questions;
    std::fill(data.begin(), data.begin() + sector, std::uint8_t{0xFF});
    EXPECT_EQ(verify(0, sector, true), 0);
    EXPECT_EQ(chip->questions, questions) << "nothing of it is compared";
}

TEST_F(SectorsTest, WhoeverWishesItReadsEverything) {
    const auto chip = chipWith(Crc::ours);
    setenv("ZVBL_VERIFY_BY", "read", 1);
    EXPECT_EQ(verify(0, 2 * sector), 0);
    EXPECT_EQ(chip->reads, 2 * packets);
    EXPECT_EQ(chip->sizeQuestions, 0);
    setenv("ZVBL_VERIFY_BY", "anything", 1);
    EXPECT_EQ(verify(0, 2 * sector), 0);
    EXPECT_EQ(chip->reads, 2 * packets);
}

} // namespace
