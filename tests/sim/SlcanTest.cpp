// The serial-line CAN adapter, line by line, with the chip at its bus.

#include <gtest/gtest.h>

#include "tests/sim/CanRig.h"

namespace sim {
namespace {

#define READY "\nH: S5 / O\nC: . / .\n"

struct Conversation {
    const char *name;
    const char *text;
};

void PrintTo(const Conversation &conversation, std::ostream *out) {
    *out << conversation.name;
}

class Slcan : public ::testing::TestWithParam<Conversation> {};

TEST_P(Slcan, goesLineForLine) {
    AdapterRig rig;
    EXPECT_EQ(rig.play(GetParam().text), "");
}

const Conversation conversations[] = {
    {"the_chip_behind_it", READY R"(
        H: t07F0
        C: z / t17F179
        H: t0020
        C: z / t102179 / t102704034770050732 / t102179
        H: t0110
        C: z / t111179
        H: t01150800000008
        C: z / t111179
        H: t011203FC
        C: z / t111179 / t1115FFFFFFFF00
    )"},
    {"lower_case_digits", READY R"(
        H: t07f0
        C: z / t17F179
    )"},
    {"long_and_remote_frames_are_sent_and_nobody_answers", READY R"(
        H: T0000007F0 / T1FFFFFFF8DEADBEEF01020304 / r0028 / R000000020
        C: Z / Z / z / Z
    )"},
    {"digits_that_are_none", READY R"(
        H: t07FX / tXXX0 / t07F1XX / t07F9
        C: ! / ! / ! / !
        told refused: adapter: "t07FX": malformed
        told refused: adapter: "tXXX0": malformed
        told refused: adapter: "t07F1XX": malformed
        told refused: adapter: "t07F9": malformed
    )"},
    {"no_such_speed", R"(
        H: S! / S9 / S55
        C: ! / ! / !
        told refused: adapter: "S!": there is no such speed
        told refused: adapter: "S9": there is no such speed
        told refused: adapter: "S55": there is no such speed
    )"},
    {"an_empty_line", R"(
        H:  /
        C: .
    )"},
    {"transmit_needs_an_open_channel", R"(
        H: t07F0 / S5 / r0020 / T0000007F0 / R000000020
        C: ! / . / ! / ! / !
        told refused: adapter: "t07F0": the channel is closed
        told refused: adapter: "r0020": the channel is closed
        told refused: adapter: "T0000007F0": the channel is closed
        told refused: adapter: "R000000020": the channel is closed
    )"},
    {"listening_only", R"(
        H: S5 / L / t07F0 / O / F / C / C
        C: . / . / ! / ! / F00 / . / !
        told refused: adapter: "t07F0": the channel only listens
        told refused: adapter: "O": the channel only listens
        told refused: adapter: "C": the channel is closed
    )"},
    {"a_channel_needs_a_speed", R"(
        H: O / L / S6 / O
        C: ! / ! / . / .
        told refused: adapter: "O": no speed is set
        told refused: adapter: "L": no speed is set
    )"},
    {"no_new_speed_while_open", READY R"(
        H: S6 / O / L / Z1 / M00000000 / m00000000
        C: ! / ! / ! / ! / ! / !
        told refused: adapter: "S6": the channel is open
        told refused: adapter: "O": the channel is open
        told refused: adapter: "L": the channel is open
        told refused: adapter: "Z1": the channel is open
        told refused: adapter: "M00000000": the channel is open
        told refused: adapter: "m00000000": the channel is open
    )"},
    {"malformed", READY R"(
        H: t / t07F / t07F1 / t07F9 / t07F000 / t8000 / t07G0 / t-7F0 / t07F1 9
        C: ! / ! / ! / ! / ! / ! / ! / ! / !
        told refused: adapter: "t": malformed
        told refused: adapter: "t07F": malformed
        told refused: adapter: "t07F1": malformed
        told refused: adapter: "t07F9": malformed
        told refused: adapter: "t07F000": malformed
        told refused: adapter: "t8000": malformed
        told refused: adapter: "t07G0": malformed
        told refused: adapter: "t-7F0": malformed
        told refused: adapter: "t07F1 9": malformed
        H: T200000000 / T07F0 / r002800 / FF / CC / V1 / t07F900000000000000000
        C: ! / ! / ! / ! / ! / ! / !
        told refused: adapter: "T200000000": malformed
        told refused: adapter: "T07F0": malformed
        told refused: adapter: "r002800": malformed
        told refused: adapter: "FF": malformed
        told refused: adapter: "CC": malformed
        told refused: adapter: "V1": malformed
        told refused: adapter: "t07F900000000000000000": malformed
    )"},
    {"malformed_while_closed", R"(
        H: S / S9 / S55 / OO / Z2 / Z / M000 / m0000000G / s0000 / X1 / hello
        C: ! / ! / ! / ! / ! / ! / ! / ! / ! / ! / !
        told refused: adapter: "S": there is no such speed
        told refused: adapter: "S9": there is no such speed
        told refused: adapter: "S55": there is no such speed
        told refused: adapter: "OO": malformed
        told refused: adapter: "Z2": malformed
        told refused: adapter: "Z": malformed
        told refused: adapter: "M000": malformed
        told refused: adapter: "m0000000G": malformed
        told refused: adapter: "s0000": unknown command
        told refused: adapter: "X1": unknown command
        told refused: adapter: "hello": unknown command
    )"},
    {"versions_at_any_time", "H: V / v / N\nC: V0100 / v0100 / NZV32" READY "H: V / v / N\nC: V0100 / v0100 / NZV32"},
    {"another_speed_than_the_chip", R"(
        H: S6 / O / t07F0 / F / F
        C: . / . / z / F80 / F00
        told ignored: frame 07F: at 500000 bits per second, the chip is at 250000
        H: C / S5 / O / t07F0
        C: . / . / . / z / t17F179
        H: t0030 / t003203FC
        C: z / t103179 / z / t103179
        H: t07F0
        C: z
        told ignored: frame 07F: at 250000 bits per second, the chip is at 500000
        H: C / S6 / O / t07F0
        C: . / . / . / z / t17F11F
    )"},
    {"the_speeds", R"(
        H: S0 / O / t07F0 / C / S1 / O / t07F0 / C / S2 / O / t07F0 / C / S3 / O / t07F0 / C / S4 / O / t07F0 / C
        C: . / . / z / . / . / . / z / . / . / . / z / . / . / . / z / . / . / . / z / .
        told ignored: frame 07F: at 10000 bits per second, the chip is at 250000
        told ignored: frame 07F: at 20000 bits per second, the chip is at 250000
        told ignored: frame 07F: at 50000 bits per second, the chip is at 250000
        told ignored: frame 07F: at 100000 bits per second, the chip is at 250000
        told ignored: frame 07F: at 125000 bits per second, the chip is at 250000
        H: S6 / O / t07F0 / C / S7 / O / t07F0 / C / S8 / O / t07F0 / C
        C: . / . / z / . / . / . / z / . / . / . / z / .
        told ignored: frame 07F: at 500000 bits per second, the chip is at 250000
        told ignored: frame 07F: at 800000 bits per second, the chip is at 250000
        told ignored: frame 07F: at 1000000 bits per second, the chip is at 250000
    )"},
    {"time_stamps_are_milliseconds_of_a_minute", R"(
        H: Z1 / S5 / O
        C: . / . / .
        # the clock begins at one second
        wait 234
        H: t07F0
        C: z / t17F17904D2
        wait 58766
        H: t07F0
        C: z / t17F11F0000
        H: C / Z0 / O / t07F0
        C: . / . / . / z / t17F11F
    )"},
    {"a_filter_of_one_identifier", R"(
        # 102 stands in the upper eleven bits of both halves: 2040
        H: M20402040 / m001F001F / S5 / O
        C: . / . / . / .
        H: t07F0 / t0020
        C: z / z / t102179 / t102704034770050732 / t102179
    )"},
    {"two_filters", R"(
        H: M20402FE0 / m001F001F / S5 / O
        C: . / . / . / .
        H: t07F0 / t0110 / t0020
        C: z / t17F179 / z / z / t102179 / t102704034770050732 / t102179
        told refused: READ: ended by another frame without data
    )"},
};
INSTANTIATE_TEST_SUITE_P(Adapter, Slcan, ::testing::ValuesIn(conversations),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(SlcanAdapter, linesComeInAnyPieces) {
    AdapterRig rig;
    EXPECT_EQ(rig.adapter.receive("S", rig.now), "");
    EXPECT_EQ(rig.adapter.receive("5\rO\rt0", rig.now), "\r\r");
    EXPECT_EQ(rig.adapter.receive("7F0\r", rig.now), "z\r");
    EXPECT_EQ(rig.received().size(), 1U);
}

TEST(SlcanAdapter, aLineThatIsTooLongIsRefusedAndForgotten) {
    AdapterRig rig;
    EXPECT_EQ(rig.play(READY), "");
    EXPECT_EQ(rig.adapter.receive("t0318" + std::string(100000, '0') + "\rt07F0\r", rig.now), "\az\r");
}

TEST(SlcanAdapter, aLongestLineIsNot) {
    AdapterRig rig;
    EXPECT_EQ(rig.play(READY "H: T1FFFFFFF80102030405060708\nC: Z"), "");
}

TEST(SlcanAdapter, sixteenFramesWaitForTheBusAndNoMore) {
    AdapterRig rig({}, {}, true);
    EXPECT_EQ(rig.play(READY), "");
    std::string frames;
    std::string answers;
    for (int i = 0; i < 17; ++i) {
        frames += "t7000\r";
        answers += i < 16 ? "z\r" : "\a";
    }
    EXPECT_EQ(rig.adapter.receive(frames, rig.now), answers);
    EXPECT_EQ(rig.adapter.receive("F\rF\r", rig.now), "F02\rF00\r");
    rig.now += 50 * 4 * microsecond; // the first is through
    EXPECT_EQ(rig.adapter.receive("t7000\rt7000\r", rig.now), "z\r\a");
    rig.now += 16 * 50 * 4 * microsecond;
    EXPECT_EQ(rig.adapter.receive("t7000\r", rig.now), "z\r");
}

TEST(SlcanAdapter, aFrameThatComesWhenItIsClosedIsLost) {
    AdapterRig rig({"tx-late@1:100"});
    EXPECT_EQ(rig.play(READY), "");
    EXPECT_EQ(rig.adapter.receive("t07F0\rC\r", rig.now), "z\r\r");
    EXPECT_EQ(rig.adapter.hear(rig.received().at(0)), "");
}

TEST(SlcanAdapter, aFrameThatComesAtAnotherSpeedIsNoise) {
    AdapterRig rig({"tx-late@1:100"});
    EXPECT_EQ(rig.play(READY), "");
    EXPECT_EQ(rig.adapter.receive("t07F0\rC\rS6\rO\r", rig.now), "z\r\r\r\r");
    EXPECT_EQ(rig.adapter.hear(rig.received().at(0)), "");
    EXPECT_EQ(rig.adapter.receive("F\r", rig.now), "F80\r");
    EXPECT_EQ(rig.play("told fault: tx-late@1:100\n"
                       "told ignored: frame 17F of the chip: at 250000 bits per second, the adapter is at 500000"),
              "");
}

TEST(SlcanAdapter, withPowerItIsClosedAndHasNoSpeed) {
    AdapterRig rig;
    EXPECT_EQ(rig.play("H: Z1 / M20402040 / m001F001F / S5 / O\nC: . / . / . / . / ."), "");
    rig.adapter.receive("t07", rig.now);
    rig.adapter.powerOn();
    EXPECT_EQ(rig.play("H: C / O / S5 / O / t07F0\nC: ! / ! / . / . / z / t17F179\n"
                       "told refused: adapter: \"C\": the channel is closed\n"
                       "told refused: adapter: \"O\": no speed is set"),
              "");
}

} // namespace
} // namespace sim
