// Time on the line and in the flash, on a clock that nobody waits for.

#include "tests/sim/Vectors.h"

namespace sim {
namespace {

constexpr unsigned baud = 115200;

// Eleven bit times: start, eight data bits, parity, stop.
Nanoseconds byteTimes(std::int64_t count) {
    return count * 11 * second / baud;
}

TEST(Pace, anAnswerComesOneByteTimeBehindTheLastByteOfTheHost) {
    Rig rig("ZV32F403A_1024K");
    rig.send({0x7F}, baud);
    const std::vector<TimedByte> bytes = rig.received();
    ASSERT_EQ(bytes.size(), 1U);
    EXPECT_EQ(bytes[0].at, rig.now + 2 * byteTimes(1));
}

TEST(Pace, bytesOfAnAnswerFollowEachOtherWithoutDrift) {
    Rig rig("ZV32F403A_1024K");
    rig.send({0x7F}, baud);
    rig.now = rig.received().back().at;
    rig.send({0x11, 0xEE}, baud);
    rig.now = rig.received().back().at;
    rig.send({0x08, 0x00, 0x00, 0x00, 0x08}, baud);
    rig.now = rig.received().back().at;
    rig.send({0xFF, 0x00}, baud);
    const std::vector<TimedByte> bytes = rig.received();
    ASSERT_EQ(bytes.size(), 257U);
    EXPECT_EQ(bytes.front().at, rig.now + byteTimes(2) + byteTimes(1));
    // 257 bytes later not even a nanosecond is lost but by the first rounding.
    EXPECT_NEAR(static_cast<double>(bytes.back().at), static_cast<double>(rig.now + byteTimes(2 + 257)), 2.0);
}

TEST(Pace, anAnswerThatIsHastenedComesSoonerByteByByte) {
    Rig rig("ZV32F403A_1024K");
    rig.send({0x7F, 0x00, 0xFF}, baud);
    const std::vector<TimedByte> asItIs{rig.line.toHost().begin(), rig.line.toHost().end()};
    const std::size_t answer = asItIs.size() - 1;
    rig.line.hasten(answer, 210 * microsecond);
    const std::vector<TimedByte> hastened = rig.received();
    EXPECT_EQ(hastened[0].at, asItIs[0].at);
    EXPECT_EQ(hastened[1].at, asItIs[1].at);
    const auto last = static_cast<Nanoseconds>(answer - 1);
    EXPECT_EQ(asItIs[3].at - hastened[3].at, 210 * microsecond * 2 / last);
    EXPECT_EQ(asItIs.back().at - hastened.back().at, 210 * microsecond);
    // The line is free from then on.
    rig.now = hastened.back().at - byteTimes(1);
    rig.send({0x00}, baud);
    rig.send({0xFF}, baud);
    EXPECT_EQ(rig.received().front().at, rig.now + byteTimes(3));
}

TEST(Pace, aPacketSentAtOnceArrivesByteByByte) {
    Rig rig("ZV32F403A_1024K");
    rig.send({0x7F}, baud);
    rig.now = rig.received().back().at;
    rig.send({0x31, 0xCE}, baud);
    rig.now = rig.received().back().at;
    rig.send({0x08, 0x00, 0x00, 0x00, 0x08}, baud);
    rig.now = rig.received().back().at;
    rig.send(parseBytes("FF 55*256 FF"), baud);
    const std::vector<TimedByte> bytes = rig.received();
    ASSERT_EQ(bytes.size(), 1U);
    EXPECT_EQ(bytes[0].byte, 0x79);
    EXPECT_NEAR(static_cast<double>(bytes[0].at), static_cast<double>(rig.now + byteTimes(258 + 1)), 2.0);
}

TEST(Pace, theRateCanBeAnything) {
    for (const unsigned rate : {1200U, 9600U, 256000U, 1000000U, 4000000U}) {
        Rig rig("ZV32F403A_1024K");
        rig.send({0x7F}, rate);
        EXPECT_NEAR(static_cast<double>(rig.received().back().at - rig.now), 22e9 / rate, 2.0) << rate;
    }
}

TEST(Pace, withoutARateNothingTakesTime) {
    Rig rig("ZV32F403A_1024K");
    rig.send({0x7F, 0x00, 0xFF});
    for (const TimedByte &byte : rig.received())
        EXPECT_EQ(byte.at, rig.now);
}

TEST(Pace, aLateByteIsLateOnTopOfItsTime) {
    Rig rig("ZV32F403A_1024K", {"tx-late@1:10"});
    rig.send({0x7F}, baud);
    EXPECT_EQ(rig.received().back().at, rig.now + 2 * byteTimes(1) + 10 * millisecond);
}

TEST(FlashTime, erasingTakesItsTimeForEachSector) {
    Rig rig("ZV32F403A_1024K", {}, {20 * millisecond, 0});
    rig.send({0x7F, 0x44, 0xBB, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x00});
    EXPECT_EQ(rig.received().back().at, rig.now + 40 * millisecond);
}

TEST(FlashTime, programmingTakesItsShareOf256Bytes) {
    Rig rig("ZV32F403A_1024K", {}, {0, 2560 * microsecond});
    rig.send(parseBytes("7F 31 CE 08 00 00 00 08 03 01 02 03 04 07"));
    EXPECT_EQ(rig.received().back().at, rig.now + 40 * microsecond);
}

TEST(FlashTime, aChipAtWorkTakesTheNextByteWhenItIsDone) {
    Rig rig("ZV32F403A_1024K", {}, {20 * millisecond, 0});
    rig.send({0x7F, 0x44, 0xBB, 0x00, 0x00, 0x00, 0x00, 0x00, 0x7F});
    const std::vector<TimedByte> bytes = rig.received();
    ASSERT_EQ(bytes.size(), 4U);
    EXPECT_EQ(bytes[2].byte, 0x79);
    EXPECT_EQ(bytes[3].byte, 0x1F);
    EXPECT_EQ(bytes[3].at, rig.now + 20 * millisecond);
}

TEST(FlashTime, theFrameLimitRunsFromTheEndOfTheWork) {
    Rig rig("ZV32F403A_1024K", {}, {10 * second, 0});
    EXPECT_EQ(rig.play(SYNC R"(
        H: 44 BB
        C: 79
        H: 00 00 00 00 00
        C: 79
        wait 500
        H: 02 FD
        C: 79 04 03 47 70 05 07 79
    )"),
              "");
}

TEST(FlashTime, aRefusedRequestTakesNoTime) {
    Rig rig("ZV32F403A_1024K", {}, {20 * millisecond, 0});
    rig.send({0x7F, 0x44, 0xBB, 0x00, 0x00, 0x02, 0x00, 0x02});
    EXPECT_EQ(rig.received().back().at, rig.now);
}

} // namespace
} // namespace sim
