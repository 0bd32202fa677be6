// The power fails while the chip erases.

#include "tests/sim/Vectors.h"

namespace sim {
namespace {

struct Cut {
    const char *fault;
    const char *firstHalf; // of sector 0, then of sector 1
    const char *secondHalf;
    const char *nextFirstHalf;
    const char *nextSecondHalf;
};

constexpr const char *gone = "FF FF FF FF";
constexpr const char *there = "01 02 03 04";

constexpr Cut cuts[] = {
    {"powercut@1:erase", gone, there, there, there},
    {"powercut@2:erase", gone, gone, there, there},
    {"powercut@3:erase", gone, gone, gone, there},
    {"powercut@4:erase", gone, gone, gone, gone},
};

std::string reads(const char *address, const char *word) {
    return std::string("\nH: 11 EE\nC: 79\nH: ") + address + "\nC: 79\nH: 03 FC\nC: 79 " + word + "\n";
}

TEST(EraseCut, eachSectorGoesInTwoHalvesAndNoAnswerComes) {
    for (const Cut &cut : cuts) {
        Rig rig("ZV32F403A_1024K", {cut.fault});
        const std::string full = SYNC WRITE_WORD("08 00 00 00 08") WRITE_WORD("08 00 04 00 0C")
            WRITE_WORD("08 00 08 00 00") WRITE_WORD("08 00 0C 00 04");
        EXPECT_EQ(rig.play(full + R"(
            H: 44 BB
            C: 79
            H: 00 01 00 00 00 01 00
            C: -
        )" AFTER_RESET + reads("08 00 00 00 08", cut.firstHalf) +
                           reads("08 00 04 00 0C", cut.secondHalf) + reads("08 00 08 00 00", cut.nextFirstHalf) +
                           reads("08 00 0C 00 04", cut.nextSecondHalf)),
                  "")
            << cut.fault;
    }
}

// What protects the chip goes last: it stays protected when the power fails before.
TEST(EraseCut, aChipThatIsUnprotectedStaysProtectedUntilItsFlashIsErased) {
    for (const char *fault : {"powercut@3:erase", "powercut@1026:erase"}) { // two steps were those of the protection
        Rig rig("ZV32F403A_1024K", {fault});
        EXPECT_EQ(rig.play(SYNC WRITE_WORD("08 0F FF FC 04") R"(
            H: 82 7D
            C: 79 79
        )" AFTER_RESET R"(
            H: 92 6D
            C: 79
        )" AFTER_RESET R"(
            H: 11 EE
            C: 1F
            H: 92 6D
            C: 79 79
        )" AFTER_RESET READS("08 0F FF FC 04", "FF FF FF FF")),
                  "")
            << fault;
    }
}

// Without its pair the chip counts as protected, whatever the half of the option bytes that is left says.
TEST(EraseCut, optionBytesGoInTwoHalves) {
    for (const char *fault : {"powercut@1:erase", "powercut@2:erase"}) {
        Rig rig("ZV32F403A_1024K", {fault});
        EXPECT_EQ(rig.play(SYNC R"(
            H: E2 1D
            C: 79
            H: 1F FF F8 00 18
            C: 79
            H: 00 17 A5 12 34 56 FE FF FF FF 00 FF*15 3C
            C: 79
        )" AFTER_RESET R"(
            H: 11 EE
            C: 1F
            H: 92 6D
            C: 79 79
        )" AFTER_RESET READS("1F FF F8 00 18", "A5 5A FF 00")),
                  "")
            << fault;
    }
}

// Steps of erasing count for nothing else, and those of programming not for them.
TEST(EraseCut, isCountedByItself) {
    Rig rig("ZV32F403A_1024K", {"powercut@5", "powercut@1:erase"});
    EXPECT_EQ(rig.play(SYNC WRITE_WORD("08 00 00 00 08") R"(
        H: 44 BB
        C: 79
        H: 00 00 00 00 00
        C: -
    )" AFTER_RESET R"(
        H: 31 CE
        C: 79
        H: 08 00 00 00 08
        C: 79
        H: 03 01 02 03 04 07
        C: -
    )" AFTER_RESET READS("08 00 00 00 08", "01 FF FF FF")),
              "");
}

} // namespace
} // namespace sim
