// A serial port with modem control lines: what the library does to them, and to its driver.

#include <cerrno>

#include <asm/termbits.h>
#include <gtest/gtest.h>
#include <linux/tty_flags.h>
#include <sys/ioctl.h>

#include "libs/zvbl/Timing.h"
#include "link/ZVBLLIB.h"
#include "tests/zvbl/FakeTty.h"
#include "tests/zvbl/ScriptedChip.h"

namespace {

constexpr int bothLines = TIOCM_DTR | TIOCM_RTS;

class SerialPortTest : public ::testing::Test {
protected:
    void SetUp() override {
        zvbl::setTiming({});
        TARGET_SetComIntType(0);
        configure(115200);
    }
    void TearDown() override { Interface_Close(link); }
    void configure(int rate) { ASSERT_EQ(SetCOMSettings(&link, 0, "ttyUSB0", rate, 8, 2, 1.0F), 0); }
    bool works() {
        ScriptedChip chip(pty, {{"D4 2B", "79"}});
        return ZVBL_ResetMCU(link) == 0 && chip.finish().empty();
    }
    termios2 line() {
        termios2 settings{};
        EXPECT_EQ(ioctl(pty.hostEnd(), TCGETS2, &settings), 0);
        return settings;
    }

    Pty pty;
    FakeTty tty{pty};
    HANDLE link = nullptr;
};

using Moves = std::vector<std::string>;

// Most drivers raise both at the open, some none. They go up together, so that a board never sees one
// without the other.
TEST_F(SerialPortTest, BothLinesAreHighAfterTheOpen) {
    for (const int fromDriver : {0, bothLines}) {
        tty.setLines(fromDriver);
        ASSERT_EQ(Interface_Open(link), 0);
        EXPECT_EQ(tty.lines(), bothLines);
        ASSERT_EQ(Interface_Close(link), 0);
    }
    EXPECT_EQ(tty.moves(), (Moves{"+DTR+RTS", "+DTR+RTS"}));
}

TEST_F(SerialPortTest, EachCallMovesItsLineAndNoOther) {
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(ZVBL_SetDtr(link, 0), 0);
    EXPECT_EQ(tty.lines(), TIOCM_RTS);
    EXPECT_EQ(ZVBL_SetRts(link, 0), 0);
    EXPECT_EQ(tty.lines(), 0);
    EXPECT_EQ(ZVBL_SetDtr(link, 1), 0);
    EXPECT_EQ(tty.lines(), TIOCM_DTR);
    EXPECT_EQ(ZVBL_SetRts(link, 1), 0);
    EXPECT_EQ(tty.lines(), bothLines);
    EXPECT_EQ(tty.moves(), (Moves{"+DTR+RTS", "-DTR", "-RTS", "+DTR", "+RTS"}));
    EXPECT_TRUE(works());
}

TEST_F(SerialPortTest, WhatIsNoLevelMovesNothing) {
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_NE(ZVBL_SetDtr(link, 2), 0);
    EXPECT_NE(ZVBL_SetRts(link, 255), 0);
    EXPECT_EQ(tty.moves(), Moves{"+DTR+RTS"});
}

// A program that was started over the lines must not be reset by the end of the programmer.
TEST_F(SerialPortTest, ClosingAndNewSettingsLeaveThem) {
    ASSERT_EQ(Interface_Open(link), 0);
    ASSERT_EQ(ZVBL_SetRts(link, 0), 0);
    configure(57600);
    EXPECT_EQ(tty.lines(), TIOCM_DTR);
    EXPECT_EQ(line().c_cflag & HUPCL, tcflag_t{0});
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(tty.lines(), TIOCM_DTR);
    EXPECT_EQ(tty.moves(), (Moves{"+DTR+RTS", "-RTS"}));
}

TEST_F(SerialPortTest, APortWithoutLinesWorksAndSaysSo) {
    tty.hasLines = false;
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_TRUE(works());
    EXPECT_EQ(ZVBL_SetDtr(link, 0), 4);
    EXPECT_EQ(ZVBL_SetRts(link, 1), 4);
    EXPECT_TRUE(works());
}

TEST_F(SerialPortTest, LinesOfAPortThatIsGone) {
    ASSERT_EQ(Interface_Open(link), 0);
    tty.unplug();
    EXPECT_EQ(ZVBL_SetDtr(link, 0), 4);
    EXPECT_EQ(ZVBL_ResetMCU(link), 4);
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(ZVBL_SetDtr(link, 0), 1);
    EXPECT_EQ(Interface_Open(link), 3);
}

TEST_F(SerialPortTest, TheDriverIsAskedNotToHoldAnswersBackAndForNothingElse) {
    tty.settings.flags = ASYNC_SPD_CUST;
    tty.settings.custom_divisor = 26;
    tty.settings.closing_wait = 3000;
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(tty.settings.flags, static_cast<int>(ASYNC_SPD_CUST | ASYNC_LOW_LATENCY));
    EXPECT_EQ(tty.settings.custom_divisor, 26);
    EXPECT_EQ(tty.settings.closing_wait, 3000);
}

TEST_F(SerialPortTest, ADriverThatCannotOrMayNotIsNoObstacle) {
    tty.settingsError = EPERM;
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(tty.settings.flags, 0);
    EXPECT_TRUE(works());
    tty.hasSettings = false;
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_TRUE(works());
}

TEST_F(SerialPortTest, AnyRate) {
    for (const int rate : {1200, 128000, 256000, 1000000, 1234567}) {
        configure(rate);
        ASSERT_EQ(Interface_Open(link), 0) << rate;
        EXPECT_EQ(line().c_ospeed, static_cast<speed_t>(rate));
        EXPECT_TRUE(works());
    }
}

// An adapter divides its clock, and tells what it has come to.
TEST_F(SerialPortTest, ARateThatTheAdapterCanOnlyComeNearTo) {
    tty.rateFactor = 0.98;
    EXPECT_EQ(Interface_Open(link), 0);
    tty.rateFactor = 0.96;
    EXPECT_EQ(Interface_Open(link), 0x21);
    EXPECT_EQ(Interface_is_Open(link), 0);
    tty.rateFactor = 1.04;
    EXPECT_EQ(Interface_Open(link), 0x21);
    tty.rateFactor = 1.02;
    EXPECT_EQ(Interface_Open(link), 0);
}

} // namespace
