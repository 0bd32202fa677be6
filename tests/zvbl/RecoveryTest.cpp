// What happens after a failure: getting in step, what is sent again and what is not, and reading back.

#include "tests/zvbl/LinkFixture.h"

namespace {

using Milliseconds = std::chrono::milliseconds;

class RecoveryTest : public LinkFixture {
protected:
    int version() { return ZVBL_GET_VER_ROPS(link, &bytes[0], &bytes[1], &bytes[2]); }
    int write(unsigned address, zvbl::Bytes data) {
        return ZVBL_DNLOAD(link, address, data.data(), static_cast<unsigned>(data.size()), 0);
    }
    BYTE bytes[3] = {};
};

const Turn versionTurn{"01 FE", "79 21 FF 12 79"};
const Turn lostVersionTurn{"01 FE", ""};
const Turn inStep{"7F", "1F"};

TEST_F(RecoveryTest, ALostAnswerIsAskedForAgainInStep) {
    hurry();
    EXPECT_EQ(play({lostVersionTurn, inStep, versionTurn}, [&] { return version(); }), 0);
    EXPECT_EQ(bytes[2], 0x12);
    EXPECT_EQ(play({versionTurn}, [&] { return version(); }), 0);
}

TEST_F(RecoveryTest, ThreeTriesAndNotMore) {
    hurry();
    const Script script = {lostVersionTurn, inStep, lostVersionTurn, inStep, lostVersionTurn};
    EXPECT_EQ(play(script, [&] { return version(); }), 5);
    EXPECT_EQ(play({inStep, versionTurn}, [&] { return version(); }), 0);
}

TEST_F(RecoveryTest, TheChipGetsItsFrameLimitBeforeItIsAskedForStep) {
    hurry(80, 5, 2000);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(play({{"01 FE", "55"}, inStep, versionTurn}, [&] { return version(); }), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, Milliseconds(80));
}

TEST_F(RecoveryTest, ALateAnswerIsNotTakenForANewOne) {
    hurry();
    const Script script = {lostVersionTurn, {"7F", "79 11 11 11 79 1F"}, versionTurn};
    EXPECT_EQ(play(script, [&] { return version(); }), 0);
    EXPECT_EQ(bytes[0], 0x21);
}

// It may have taken bytes of a packet for commands before: what was under way does not end well.
TEST_F(RecoveryTest, AChipThatWasResetFailsTheCommandAndIsFoundAgain) {
    hurry(100, 100); // an answer that a busy machine holds up for the quiet time is a late one
    EXPECT_EQ(play({lostVersionTurn, {"7F", "79"}}, [&] { return version(); }), 5);
    EXPECT_EQ(play({inStep, versionTurn}, [&] { return version(); }), 0);
}

TEST_F(RecoveryTest, ADeadLineEndsAfterOneTimeoutForTheCommandAndOneForTheStep) {
    hurry();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(play({lostVersionTurn, {"7F", ""}}, [&] { return version(); }), 5);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, Milliseconds(900));
    EXPECT_EQ(play({inStep, versionTurn}, [&] { return version(); }), 0);
}

TEST_F(RecoveryTest, AChipThatNeverGetsInStepIsGivenUp) {
    hurry();
    EXPECT_EQ(play({lostVersionTurn, {"7F", "55"}, {"7F", "55"}, {"7F", "55"}}, [&] { return version(); }), 5);
}

TEST_F(RecoveryTest, ARefusedFrameIsRepeatedAndTheStepSecuredAtOnce) {
    EXPECT_EQ(play({{"01 FE", "1F"}, inStep, {"01 FE", "1F"}, inStep, versionTurn}, [&] { return version(); }), 0);
    EXPECT_EQ(play({{"01 FE", "1F"}, inStep, {"01 FE", "1F"}, inStep, {"01 FE", "1F"}}, [&] { return version(); }),
              0x13);
}

// Bytes of a damaged group that are still under way are answered too, so one NACK is not enough.
TEST_F(RecoveryTest, ARefusalWithMoreAfterItIsWaitedOut) {
    hurry();
    EXPECT_EQ(play({{"01 FE", "1F"}, {"7F", "1F 1F"}, inStep, versionTurn}, [&] { return version(); }), 0);
}

TEST_F(RecoveryTest, WhatIsPendingBeforeACommandIsOld) {
    pty.write(hex("79 79 1F 00"));
    EXPECT_EQ(play({versionTurn}, [&] { return version(); }), 0);
    EXPECT_EQ(bytes[0], 0x21);
}

TEST_F(RecoveryTest, ADoubledAnswerStopsTheCommand) {
    hurry();
    EXPECT_EQ(play({{"44 BB", "79 79"}}, [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }), 5);
    EXPECT_EQ(play({inStep, {"44 BB", "79"}, {"FF FE 01", "79"}}, [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }),
              0);
}

// On a real line the second one comes a character time later: 37 ms at 300 baud.
TEST_F(RecoveryTest, ADoubledAnswerOnASlowLineStopsTheCommandToo) {
    ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), 300, 8, 2, 1.0F), 0);
    hurry();
    EXPECT_EQ(play({{"44 BB", "79 79", 0, 15}}, [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }), 5);
    EXPECT_EQ(play({inStep, {"D4 2B", "79 79", 0, 15}}, [&] { return ZVBL_ResetMCU(link); }), 5);
}

// A pseudo terminal, and an adapter on USB too, carries more than its rate. What was answered has left it.
TEST_F(RecoveryTest, ALineThatIsFasterThanItsRateGetsInStepAsSoon) {
    ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), 300, 8, 2, 1.0F), 0);
    hurry();
    zvbl::Bytes group(66, 0);
    group.front() = group.back() = 0x3F;
    const Script writing = {{"31 CE", "79"}, {"20 00 00 00 20", "79"}, {group, "79"}};
    EXPECT_EQ(play(writing, [&] { return write(0x20000000, zvbl::Bytes(64, 0)); }), 0);
    EXPECT_EQ(play({{"01 FE", "55"}, inStep, versionTurn}, [&] { return version(); }), 0);
}

TEST_F(RecoveryTest, AWrongChecksumIsAskedForAgain) {
    hurry();
    BYTE enabled = 9;
    const Script script = {{"D3 2C", "79 01 00 04 00 06 01 07 04"}, inStep, {"D3 2C", "79 00 FF FF FF FF FF FF 00"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_GetSlibStatus(link, &enabled); }), 0);
    EXPECT_EQ(enabled, 0);
}

TEST_F(RecoveryTest, ACommandIsNotFinishedAfterTheChipsFrameLimit) {
    zvbl::setTiming({Milliseconds(0), Milliseconds(5)}); // so that every pause is too long
    ASSERT_EQ(Interface_Open(link), 0);
    const Script script = {{"11 EE", "79"}, inStep, {"11 EE", "79"}, inStep, {"11 EE", "79"}};
    BYTE data[4];
    EXPECT_EQ(play(script, [&] { return ZVBL_UPLOAD(link, 0x20000000, data, 4); }), 5);
}

// The start.

TEST_F(RecoveryTest, AnOpeningByteThatGotLostIsSentAgainAfterTheFrameLimit) {
    hurry(100, 5, 700);
    EXPECT_EQ(play({{"7F", ""}, {"7F", "79"}, versionTurn},
                   [&] {
                       const int status = ZVBL_Init_BL(link, 0, 0, 0);
                       return status ? status : version();
                   }),
              0);
}

TEST_F(RecoveryTest, TwoAnswersToTwoOpeningBytesShiftNothing) {
    hurry(100, 5, 700);
    EXPECT_EQ(play({{"7F", ""}, {"7F", "79 1F"}, versionTurn},
                   [&] {
                       const int status = ZVBL_Init_BL(link, 0, 0, 0);
                       return status ? status : version();
                   }),
              0);
}

TEST_F(RecoveryTest, NoiseBeforeTheAnswerDoesNotStopAStart) {
    hurry(100, 5, 700);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(play({{"7F", "00"}, {"7F", "1F"}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, Milliseconds(100)); // or it might fill up a frame
    EXPECT_EQ(play({{"7F", "00 FF 79"}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
}

TEST_F(RecoveryTest, AStartOfAChipInItsCommandStateTakesNoTimeout) {
    ASSERT_EQ(SetTimeOut(link, 5000), 0);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(play({inStep}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, Milliseconds(1000));
}

TEST_F(RecoveryTest, APromptAnswerToTheOpeningByteIsBelievedSooner) {
    const auto startTime = [&](const Turn &turn) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(play({turn}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
        return std::chrono::steady_clock::now() - begin;
    };
    const auto quiet = Milliseconds(400);
    zvbl::Timing timing;
    timing.quiet = quiet;
    timing.prompt = Milliseconds(150);
    zvbl::setTiming(timing);
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_LT(startTime({"7F", "79"}), quiet);
    EXPECT_LT(startTime({"7F", "1F"}), quiet);
    EXPECT_GE(startTime({"7F", "79", 160}), quiet) << "it may have been held up on its way, and more with it";
    EXPECT_GE(startTime({"7F", "00 79"}), quiet) << "there is more under way than the answer";
}

// What is sent once only, whatever becomes of its answer.

BYTE g_two[2] = {3, 0};

struct Once {
    const char *name;
    const char *opening;
    int (*call)(HANDLE);
};

void PrintTo(const Once &row, std::ostream *out) {
    *out << row.opening;
}

const Once onceRows[] = {
    {"Go", "21 DE", [](HANDLE h) -> int { return ZVBL_GO(h, 0x08000000); }},
    {"Reset", "D4 2B", [](HANDLE h) -> int { return ZVBL_ResetMCU(h); }},
    {"Erase", "44 BB", [](HANDLE h) -> int { return ZVBL_ERASE(h, 1, g_two, 2048); }},
    {"EraseOfABank", "44 BB", [](HANDLE h) -> int { return ZVBL_ERASE(h, 0xFFFE, nullptr, 0); }},
    {"EraseOfABlock", "44 BB", [](HANDLE h) -> int { return ZVBL_BLOCK_ERASE(h, 0xFFFB, 0x08000000); }},
    {"AccessProtection", "82 7D", [](HANDLE h) -> int { return ZVBL_ACCESS_PROTECT(h); }},
    {"AccessProtectionAtALevel", "84 7B", [](HANDLE h) -> int { return ZVBL_ACCESS_PROTECT_LEVEL(h, 2); }},
    {"AccessProtectionOff", "92 6D", [](HANDLE h) -> int { return ZVBL_ACCESS_PERM_UNPROTECT(h); }},
    {"SectorProtection", "63 9C", [](HANDLE h) -> int { return ZVBL_ERASEPROGRAM_PROTECT(h, 1, g_two); }},
    {"SectorProtectionOff", "73 8C", [](HANDLE h) -> int { return ZVBL_ERASEPROGRAM_PERM_UNPROTECT(h); }},
    {"Slib", "D1 2E", [](HANDLE h) -> int { return ZVBL_EnableSlib(h, 1, 0, 0, 0); }},
    {"SlibOff", "D2 2D", [](HANDLE h) -> int { return ZVBL_DisableSlib(h, 1); }},
    {"UserSystemData", "E2 1D", [](HANDLE h) -> int { return TARGET_SetUserSystemData(h, 0x1FFFF800, g_two, 2); }},
};

class SentOnceTest : public RecoveryTest, public ::testing::WithParamInterface<Once> {};

TEST_P(SentOnceTest, WhateverBecomesOfItsAnswer) {
    hurry(100, 5, 2000);
    const auto call = [&] { return GetParam().call(link); };
    EXPECT_EQ(play({{GetParam().opening, "1F"}}, call), 0x13);
    EXPECT_EQ(play({inStep, {GetParam().opening, "78"}}, call), 5);
    EXPECT_EQ(play({inStep, versionTurn}, [&] { return version(); }), 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, SentOnceTest, ::testing::ValuesIn(onceRows),
                         [](const auto &row) { return std::string(row.param.name); });

// A write whose answer got lost.

const Script lostWrite = {{"31 CE", "79"}, {"08 00 00 00 08", "79"}, {"03 11 22 FF 44 8B", ""}, {"7F", "1F"}};

Script lostWriteThenCells(const std::string &cells) {
    Script script = lostWrite;
    script.insert(script.end(), {{"11 EE", "79"}, {"08 00 00 00 08", "79"}, {"03 FC", "79 " + cells}});
    return script;
}

const zvbl::Bytes written = {0x11, 0x22, 0xFF, 0x44};

TEST_F(RecoveryTest, CellsThatHoldTheDataAreDone) {
    hurry();
    EXPECT_EQ(play(lostWriteThenCells("11 22 FF 44"), [&] { return write(0x08000000, written); }), 0);
    // FF says nothing about a cell: it may belong to the packet before.
    EXPECT_EQ(play(lostWriteThenCells("11 22 33 44"), [&] { return write(0x08000000, written); }), 0);
}

TEST_F(RecoveryTest, ErasedCellsAreWrittenAgain) {
    hurry();
    Script script = lostWriteThenCells("FF FF FF FF");
    script.insert(script.end(), {{"31 CE", "79"}, {"08 00 00 00 08", "79"}, {"03 11 22 FF 44 8B", "79"}});
    EXPECT_EQ(play(script, [&] { return write(0x08000000, written); }), 0);
}

TEST_F(RecoveryTest, OfAHalfWrittenPacketOnlyTheRestIsWritten) {
    hurry();
    Script script = lostWriteThenCells("11 22 FF FF");
    script.insert(script.end(), {{"31 CE", "79"}, {"08 00 00 00 08", "79"}, {"03 FF FF FF 44 B8", "79"}});
    EXPECT_EQ(play(script, [&] { return write(0x08000000, written); }), 0);
}

TEST_F(RecoveryTest, CellsThatHoldSomethingElseEndTheDownload) {
    hurry();
    EXPECT_EQ(play(lostWriteThenCells("11 22 FF 45"), [&] { return write(0x08000000, written); }), 5);
}

TEST_F(RecoveryTest, CellsThatCannotBeReadEndTheDownload) {
    hurry();
    Script script = lostWrite;
    script.insert(script.end(), {{"11 EE", "1F"}, inStep, {"11 EE", "1F"}, inStep, {"11 EE", "1F"}});
    EXPECT_EQ(play(script, [&] { return write(0x08000000, written); }), 5);
}

TEST_F(RecoveryTest, RamIsWrittenAgainWhateverItHolds) {
    hurry();
    const Script first = {{"31 CE", "79"}, {"20 00 00 00 20", "79"}, {"01 11 22 32", ""}, {"7F", "1F"}};
    Script script = first;
    script.insert(script.end(), {{"11 EE", "79"}, {"20 00 00 00 20", "79"}, {"01 FE", "79 11 99"}});
    script.insert(script.end(), {{"31 CE", "79"}, {"20 00 00 00 20", "79"}, {"01 11 22 32", "79"}});
    EXPECT_EQ(play(script, [&] { return write(0x20000000, {0x11, 0x22}); }), 0);
}

TEST_F(RecoveryTest, OtpIsReadBackAndNeverWrittenTwice) {
    hurry();
    const Script first = {{"31 CE", "79"}, {"1F FF F0 00 10", "79"}, {"01 11 22 32", ""}, {"7F", "1F"}};
    for (const char *cells : {"11 22", "FF FF"}) {
        Script script = first;
        script.insert(script.end(), {{"11 EE", "79"}, {"1F FF F0 00 10", "79"}, {"01 FE", std::string("79 ") + cells}});
        EXPECT_EQ(play(script, [&] { return write(0x1FFFF000, {0x11, 0x22}); }), cells[0] == '1' ? 0 : 5);
    }
    EXPECT_EQ(play({{"31 CE", "1F"}}, [&] { return write(0x1FFFF000, {0x11, 0x22}); }), 0x13);
    EXPECT_EQ(play({inStep, {"31 CE", "79"}, {"1F FF F0 00 10", "79"}, {"01 11 22 32", "1F"}},
                   [&] {
                       return write(0x1FFFF000, {0x11, 0x22});
                   }),
              0x14);
}

// A refusal is the chip's word that no cell was touched: the packet is sent again as it is.
TEST_F(RecoveryTest, ARefusedWriteIsRepeated) {
    const Turn open{"31 CE", "79"}, address{"08 00 00 00 08", "79"};
    const Turn refused{"03 11 22 FF 44 8B", "1F"}, taken{"03 11 22 FF 44 8B", "79"};
    EXPECT_EQ(play({open, address, refused, inStep, open, address, taken}, [&] { return write(0x08000000, written); }),
              0);
    const Script never = {open, address, refused, inStep, open, address, refused, inStep, open, address, refused};
    EXPECT_EQ(play(never, [&] { return write(0x08000000, written); }), 0x14);
}

} // namespace
