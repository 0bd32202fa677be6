// Sectors that are compared one after the other, a call for each: their checksums come ahead.

#include "tests/zvbl/SectorsFixture.h"

namespace {

class SectorsAheadTest : public SectorsTest {
protected:
    int verifySector(std::size_t number) { return verify(number * sector, sector); }
};

// Byte by byte, on an erased chip.
TEST_F(SectorsAheadTest, TheNextOnesAreAskedForInOneQuestion) {
    const Script script = {{"00 FF", "79 02 21 11 AC 79"},
                           {"AC 53", "79"},
                           {"08 00 00 00 08", "79"},
                           {"00 00 00", "79 00 00 08 00 08"},
                           {"AC 53", "79"},
                           {"08 00 00 00 08", "79"},
                           {"00 01 01", "79 3F 55 D1 7F C4"},
                           {"AC 53", "79"},
                           {"08 00 08 00 00", "79"},
                           {"80 03 83", "79 3F 55 D1 7F 3F 55 D1 7F 3F 55 D1 7F C4"}};
    zvbl::Bytes erased(4 * sector, 0xFF);
    BYTE version = 0;
    Commands commands;
    EXPECT_EQ(play(script,
                   [&] {
                       EXPECT_EQ(ZVBL_GET(link, &version, &commands), 0);
                       for (unsigned i = 0; i < 3; ++i)
                           EXPECT_EQ(ZVBL_VERIFY(link, base + i * sector, erased.data(), sector, 0), 0);
                       return ZVBL_VERIFY(link, base + 3 * sector, erased.data(), sector, 0);
                   }),
              0);
}

TEST_F(SectorsAheadTest, SeveralOfOneCallAreFollowedToo) {
    const auto chip = chipWith(Crc::ours);
    EXPECT_EQ(verify(0, 2 * sector), 0);
    EXPECT_EQ(verifySector(2), 0);
    EXPECT_EQ(verifySector(3), 0);
    EXPECT_EQ(chip->questions, 1);
    EXPECT_EQ(chip->questionsOfEach, 1);
}

TEST_F(SectorsAheadTest, ADifferenceComesFromBytesThatAreRead) {
    const auto chip = chipWith(Crc::ours);
    data[2 * sector + 700] ^= 1;
    EXPECT_EQ(verifySector(0), 0);
    EXPECT_EQ(verifySector(1), 0);
    EXPECT_EQ(chip->reads, 0);
    EXPECT_EQ(verifySector(2), 19);
    EXPECT_EQ(chip->questions, 2) << "the first one, and the third once more";
    EXPECT_EQ(chip->reads, 4) << "up to the packet, and that twice";
}

TEST_F(SectorsAheadTest, WhatIsErasedMeanwhileIsFound) {
    const auto chip = chipWith(Crc::ours);
    EXPECT_EQ(verifySector(0), 0);
    EXPECT_EQ(verifySector(1), 0);
    const int questions = chip->questions + chip->questionsOfEach;
    BYTE number[] = {2, 0};
    EXPECT_EQ(ZVBL_ERASE(link, 1, number, 0), 0);
    EXPECT_EQ(verifySector(2), 19);
    EXPECT_EQ(verifySector(3), 0);
    EXPECT_EQ(chip->questions + chip->questionsOfEach, questions + 2);
}

TEST_F(SectorsAheadTest, WhatOnlyReadsLeavesThemKnown) {
    const auto chip = chipWith(Crc::ours);
    EXPECT_EQ(verifySector(0), 0);
    EXPECT_EQ(verifySector(1), 0);
    EXPECT_EQ(upload(4, 8), 0);
    data = memory;
    EXPECT_EQ(verifySector(2), 0);
    EXPECT_EQ(chip->questions, 1);
    EXPECT_EQ(chip->questionsOfEach, 1);
}

TEST_F(SectorsAheadTest, ASectorThatIsComparedAgainIsAskedForAgain) {
    const auto chip = chipWith(Crc::ours);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(verifySector(i), 0);
    EXPECT_EQ(verifySector(3), 0);
    EXPECT_EQ(chip->questions, 2);
}

TEST_F(SectorsAheadTest, TheyAreNotBelievedForLong) {
    const auto chip = chipWith(Crc::ours);
    zvbl::Timing hasty = zvbl::timing();
    hasty.believed = {};
    zvbl::setTiming(hasty);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(verifySector(i), 0);
    EXPECT_EQ(chip->questionsOfEach, 2) << "one for each sector";
}

// Beyond the end there are no checksums: half as many are asked for, down to those that are there.
TEST_F(SectorsAheadTest, TheEndOfTheFlashIsNoFailure) {
    const auto chip = chipWith(Crc::ours);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(verifySector(i), 0);
    EXPECT_EQ(chip->reads, 0);
    EXPECT_EQ(chip->questions, 1);
}

TEST_F(SectorsAheadTest, AChipThatAnswersForFewIsAskedForFew) {
    const auto chip = chipWith(Crc::fewOfEach);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(verifySector(i), 0);
    EXPECT_EQ(chip->questions, 1);
    EXPECT_EQ(chip->questionsOfEach, 5) << "3 and 1 of the second, 6 and 3 and 1 of the third";
}

TEST_F(SectorsAheadTest, AChipWithoutThatQuestionIsAskedSectorBySector) {
    const auto chip = chipWith(Crc::notOfEach);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(verifySector(i), 0);
    EXPECT_EQ(chip->questions, 5);
    EXPECT_EQ(chip->questionsOfEach, 2) << "for three, and for one; then never again";
    EXPECT_EQ(chip->reads, 0);
}

TEST_F(SectorsAheadTest, AChipThatIsSilentThereIsAskedSectorBySector) {
    const auto chip = chipWith(Crc::silentOfEach);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(verifySector(i), 0);
    EXPECT_EQ(chip->questions, 4);
    EXPECT_EQ(chip->questionsOfEach, 1);
    EXPECT_EQ(chip->reads, 0);
}

TEST_F(SectorsAheadTest, AChipThatDiesThereIs5) {
    const auto chip = chipWith(Crc::deadlyOfEach);
    EXPECT_EQ(verifySector(0), 0);
    EXPECT_EQ(verifySector(1), 5);
    EXPECT_EQ(chip->reads, 0);
}

} // namespace
