// READs that follow each other without a pause: nothing of them is believed before the end was silent.

#include "tests/zvbl/LinkFixture.h"

namespace {

using Bytes = zvbl::Bytes;

class ReadRunTest : public LinkFixture {
protected:
    void SetUp() override {
        LinkFixture::SetUp();
        hurry();
        ASSERT_EQ(SetPaketSize(link, 1), 0);
    }

    // A READ of one byte of RAM as its three turns, with what comes after its length, and after its opcode. With a
    // time, the last byte of that is so late, and the next answer again.
    static Script readOf(int offset, const std::string &last, const std::string &first = "79", int lateMs = 0) {
        const auto low = static_cast<std::uint8_t>(offset);
        return {{"11 EE", first, 0, lateMs},
                {"20 00 00 " + hex(Bytes{low}) + " " + hex(Bytes{static_cast<std::uint8_t>(0x20 ^ low)}), "79", lateMs},
                {"00 FF", last}};
    }

    static Script inStep(const Script &after) {
        Script script{{"7F", "1F"}};
        script.insert(script.end(), after.begin(), after.end());
        return script;
    }

    static Script all(std::initializer_list<Script> parts) {
        Script script;
        for (const Script &part : parts)
            script.insert(script.end(), part.begin(), part.end());
        return script;
    }

    int upload(Bytes &data, const Script &script) {
        return play(script,
                    [&] { return ZVBL_UPLOAD(link, 0x20000000, data.data(), static_cast<unsigned>(data.size())); });
    }

    int verify(Bytes data, const Script &script) {
        return play(script,
                    [&] { return ZVBL_VERIFY(link, 0x20000000, data.data(), static_cast<unsigned>(data.size()), 0); });
    }
};

// At 300 baud one pause to see whether the line is silent takes 55 ms.
TEST_F(ReadRunTest, ThereIsNoPauseButAtTheEnd) {
    ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), 300, 8, 2, 1.0F), 0);
    Script script;
    for (int i = 0; i < 16; ++i)
        script = all({script, readOf(i, "79 05")});
    Bytes data(16);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(upload(data, script), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500));
    EXPECT_EQ(data, Bytes(16, 5));
}

TEST_F(ReadRunTest, AByteThatIsLeftOverAtTheEndMakesTheRunBeReadAgain) {
    Bytes data(2);
    // The ACK comes twice, the second time so late that it passes for the next one, and so on to the end.
    EXPECT_EQ(upload(data, all({readOf(0, "79 11"), readOf(1, "79 22", "79 79", 20), inStep(readOf(0, "79 11")),
                                readOf(1, "79 22")})),
              0);
    EXPECT_EQ(data, (Bytes{0x11, 0x22}));
}

TEST_F(ReadRunTest, NothingOfARunThatFailedIsBelieved) {
    Bytes data(3);
    EXPECT_EQ(upload(data, all({readOf(0, "79 99"),
                                readOf(1, "79 88"),
                                {{"11 EE", "00"}},
                                inStep(readOf(0, "79 11")),
                                readOf(1, "79 22"),
                                readOf(2, "79 33")})),
              0);
    EXPECT_EQ(data, (Bytes{0x11, 0x22, 0x33}));
}

TEST_F(ReadRunTest, WhatComesTooMuchWithinARunIsNotThrownAway) {
    Bytes data(2);
    EXPECT_EQ(upload(data, all({readOf(0, "79 99 11"), inStep(readOf(0, "79 11")), readOf(1, "79 22")})), 0);
    EXPECT_EQ(data, (Bytes{0x11, 0x22}));
}

TEST_F(ReadRunTest, ARefusalOfItsFirstPacketEndsItAfterThreeTries) {
    Bytes data(2);
    const Script refused{{"11 EE", "1F"}};
    EXPECT_EQ(upload(data, all({refused, inStep(refused), inStep(refused)})), 0x13);
}

TEST_F(ReadRunTest, ARefusalOfTheFirstPacketOfAVerifyToo) {
    const Script refused{{"11 EE", "1F"}};
    EXPECT_EQ(verify({0x11, 0x22}, all({refused, inStep(refused), inStep(refused)})), 0x14);
}

TEST_F(ReadRunTest, ADifferenceIsLookedAtAlone) {
    EXPECT_EQ(verify({0x11, 0x22, 0x33}, all({readOf(0, "79 11"), readOf(1, "79 23"), readOf(1, "79 23")})), 19);
}

TEST_F(ReadRunTest, ADifferenceThatWasTheLineMakesTheRunBeReadAgain) {
    const Script again = all({readOf(0, "79 10"), readOf(0, "79 10")});
    EXPECT_EQ(verify({0x11, 0x22}, all({readOf(0, "79 11"), readOf(1, "79 23"), readOf(1, "79 22"), again})), 19);
}

TEST_F(ReadRunTest, AVerifyThatFailsInTheMiddleIsDoneAgainPacketByPacket) {
    EXPECT_EQ(verify({0x11, 0x22},
                     all({readOf(0, "79 11"), {{"11 EE", "00"}}, inStep(readOf(0, "79 11")), readOf(1, "79 22")})),
              0);
}

} // namespace
