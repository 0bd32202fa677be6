// What happens behind a failure: getting in step, what is sent again and what is not, and reading back.

#include <functional>

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

TEST_F(RecoveryTest, AChipThatWasResetIsFoundAgain) {
    hurry();
    EXPECT_EQ(play({lostVersionTurn, {"7F", "79"}, inStep, versionTurn}, [&] { return version(); }), 0);
}

TEST_F(RecoveryTest, ADeadLineEndsBehindOneTimeoutForTheCommandAndOneForTheStep) {
    hurry();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(play({lostVersionTurn, {"7F", ""}}, [&] { return version(); }), 5);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, Milliseconds(500));
    EXPECT_EQ(play({inStep, versionTurn}, [&] { return version(); }), 0);
}

TEST_F(RecoveryTest, AChipThatNeverGetsInStepIsGivenUp) {
    hurry();
    EXPECT_EQ(play({lostVersionTurn, {"7F", "55"}, {"7F", "55"}, {"7F", "55"}}, [&] { return version(); }), 5);
}

TEST_F(RecoveryTest, ARefusedFrameIsRepeatedAndTheStepSecuredAtOnce) {
    EXPECT_EQ(play({{"01 FE", "1F"}, inStep, {"01 FE", "1F"}, inStep, versionTurn}, [&] { return version(); }), 0);
    EXPECT_EQ(play({{"01 FE", "1F"}, inStep, {"01 FE", "1F"}, inStep, {"01 FE", "1F"}}, [&] { return version(); }), 0x13);
}

// Bytes of a damaged group that are still under way are answered too, so one NACK is not enough.
TEST_F(RecoveryTest, ARefusalWithMoreBehindItIsWaitedOut) {
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
    EXPECT_EQ(play({inStep, {"44 BB", "79"}, {"FF FE 01", "79"}}, [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }), 0);
}

TEST_F(RecoveryTest, AWrongChecksumIsAskedForAgain) {
    hurry();
    BYTE enabled = 9;
    const Script script = {{"D3 2C", "79 01 00 04 00 06 01 07 04"}, inStep, {"D3 2C", "79 00 FF FF FF FF FF FF 00"}};
    EXPECT_EQ(play(script, [&] { return ZVBL_GetSlibStatus(link, &enabled); }), 0);
    EXPECT_EQ(enabled, 0);
}

TEST_F(RecoveryTest, ACommandIsNotFinishedBehindTheChipsFrameLimit) {
    zvbl::setTiming({Milliseconds(0), Milliseconds(5)}); // so that every pause is too long
    ASSERT_EQ(Interface_Open(link), 0);
    const Script script = {{"11 EE", "79"}, inStep, {"11 EE", "79"}, inStep, {"11 EE", "79"}};
    BYTE data[4];
    EXPECT_EQ(play(script, [&] { return ZVBL_UPLOAD(link, 0x20000000, data, 4); }), 5);
}

// The start.

TEST_F(RecoveryTest, AnOpeningByteThatGotLostIsSentAgainBehindTheFrameLimit) {
    hurry(30, 5, 500);
    EXPECT_EQ(play({{"7F", ""}, {"7F", "79"}, versionTurn}, [&] {
        const int status = ZVBL_Init_BL(link, 0, 0, 0);
        return status ? status : version();
    }), 0);
}

TEST_F(RecoveryTest, TwoAnswersToTwoOpeningBytesShiftNothing) {
    hurry(30, 5, 500);
    EXPECT_EQ(play({{"7F", ""}, {"7F", "79 1F"}, versionTurn}, [&] {
        const int status = ZVBL_Init_BL(link, 0, 0, 0);
        return status ? status : version();
    }), 0);
}

TEST_F(RecoveryTest, NoiseBeforeTheAnswerDoesNotStopAStart) {
    hurry(30, 5, 500);
    EXPECT_EQ(play({{"7F", "00"}, {"7F", "1F"}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_EQ(play({{"7F", "00 FF 79"}}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
}

TEST_F(RecoveryTest, AStartOfAChipInItsCommandStateTakesNoTimeout) {
    ASSERT_EQ(SetTimeOut(link, 5000), 0);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(play({inStep}, [&] { return ZVBL_Init_BL(link, 0, 0, 0); }), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, Milliseconds(1000));
}

// What is sent once only, whatever becomes of its answer.

TEST_F(RecoveryTest, WhatMustNotHappenTwiceIsSentOnce) {
    BYTE two[2] = {3, 0};
    const struct {
        const char *name;
        const char *opening;
        std::function<int()> call;
    } rows[] = {
        {"go", "21 DE", [&] { return ZVBL_GO(link, 0x08000000); }},
        {"reset", "D4 2B", [&] { return ZVBL_ResetMCU(link); }},
        {"erase", "44 BB", [&] { return ZVBL_ERASE(link, 1, two, 2048); }},
        {"erase of a bank", "44 BB", [&] { return ZVBL_ERASE(link, 0xFFFE, nullptr, 0); }},
        {"erase of a block", "44 BB", [&] { return ZVBL_BLOCK_ERASE(link, 0xFFFB, 0x08000000); }},
        {"access protection", "82 7D", [&] { return ZVBL_ACCESS_PROTECT(link); }},
        {"access protection at a level", "84 7B", [&] { return ZVBL_ACCESS_PROTECT_LEVEL(link, 2); }},
        {"access protection off", "92 6D", [&] { return ZVBL_ACCESS_PERM_UNPROTECT(link); }},
        {"sector protection", "63 9C", [&] { return ZVBL_ERASEPROGRAM_PROTECT(link, 1, two); }},
        {"sector protection off", "73 8C", [&] { return ZVBL_ERASEPROGRAM_PERM_UNPROTECT(link); }},
        {"sLib", "D1 2E", [&] { return ZVBL_EnableSlib(link, 1, 0, 0, 0); }},
        {"sLib off", "D2 2D", [&] { return ZVBL_DisableSlib(link, 1); }},
        {"user system data", "E2 1D", [&] { return TARGET_SetUserSystemData(link, 0x1FFFF800, two, 2); }},
    };
    hurry(10, 2, 1000);
    ASSERT_EQ(play({{"D4 2B", "1F"}}, [&] { return ZVBL_ResetMCU(link); }), 0x13);
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(play({inStep, {row.opening, "1F"}}, row.call), 0x13);
        EXPECT_EQ(play({inStep, {row.opening, "78"}}, row.call), 5);
        EXPECT_EQ(play({inStep, {"01 FE", "1F"}, inStep, versionTurn}, [&] { return version(); }), 0);
        EXPECT_EQ(play({{row.opening, "1F"}}, row.call), 0x13);
    }
}

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
                   [&] { return write(0x1FFFF000, {0x11, 0x22}); }),
              0x14);
}

// A refusal is the chip's word that no cell was touched: the packet is sent again as it is.
TEST_F(RecoveryTest, ARefusedWriteIsRepeated) {
    const Turn open{"31 CE", "79"}, address{"08 00 00 00 08", "79"};
    const Turn refused{"03 11 22 FF 44 8B", "1F"}, taken{"03 11 22 FF 44 8B", "79"};
    EXPECT_EQ(play({open, address, refused, inStep, open, address, taken}, [&] { return write(0x08000000, written); }), 0);
    const Script never = {open, address, refused, inStep, open, address, refused, inStep, open, address, refused};
    EXPECT_EQ(play(never, [&] { return write(0x08000000, written); }), 0x14);
}

} // namespace
