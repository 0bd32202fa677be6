#pragma once

#include <gtest/gtest.h>

#include "libs/zvbl/Timing.h"
#include "link/ZVBLLIB.h"
#include "tests/zvbl/ScriptedChip.h"

// An open USART link over a pseudo terminal, through the C interface.
class LinkFixture : public ::testing::Test {
protected:
    static constexpr int baud = 1000000;

    void SetUp() override {
        zvbl::setTiming({});
        TARGET_SetComIntType(0);
        ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), baud, 8, 2, 1.0F), 0);
        ASSERT_EQ(Interface_Open(link), 0);
    }
    void TearDown() override { Interface_Close(link); }

    // Opens the link anew with short time limits, for what happens after a failure.
    void hurry(int frameLimitMs = 100, int quietMs = 5, unsigned timeoutMs = 120) {
        zvbl::setTiming({std::chrono::milliseconds(frameLimitMs), std::chrono::milliseconds(quietMs)});
        ASSERT_EQ(Interface_Open(link), 0);
        ASSERT_EQ(SetTimeOut(link, timeoutMs), 0);
    }

    // Runs a call while the chip plays its part, and gives the call's status.
    template <class Call>
    int play(Script script, Call call) {
        ScriptedChip chip(pty, std::move(script));
        const int status = call();
        EXPECT_EQ(chip.finish(), "");
        return status;
    }

    Pty pty;
    HANDLE link = nullptr;
};
