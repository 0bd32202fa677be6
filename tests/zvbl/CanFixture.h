#pragma once

#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

#include <gtest/gtest.h>

#include "libs/zvbl/Timing.h"
#include "link/ZVBLLIB.h"
#include "tests/zvbl/CanBusProcess.h"
#include "tests/zvbl/CanChip.h"
#include "tests/zvbl/TraceText.h"

// An open link on can0, through the C interface, with its trace.
class CanFixture : public ::testing::Test {
protected:
    void SetUp() override { openOn(0); }
    void TearDown() override {
        Interface_Close(link);
        unsetenv("ZVBL_TRACE");
        zvbl::setTiming({});
    }

    void openOn(unsigned bitsPerSecond) {
        Interface_Close(link);
        bus.reset(); // one at a time: its directory is that of the process
        bus = std::make_unique<CanBusProcess>(bitsPerSecond);
        setenv("ZVBL_TRACE", (bus->directory() + "/trace").c_str(), 1);
        setOpeningPause(6000); // one in each time limit
        TARGET_SetComIntType(3);
        ASSERT_EQ(SetCOMSettings(&link, 0, "can0", 115200, 8, 2, 1.0F), 0);
        ASSERT_EQ(Interface_Open(link), 0);
        ASSERT_EQ(SetTimeOut(link, 5000), 0);
    }

    // For what waits for an answer that never comes: as long as a busy machine may hold up one that does.
    void hurry(unsigned timeoutMs = 300) { ASSERT_EQ(SetTimeOut(link, timeoutMs), 0); }

    // Of links that are opened from now on.
    static void setOpeningPause(int ms, std::chrono::milliseconds quiet = std::chrono::milliseconds(5)) {
        zvbl::setTiming({std::chrono::milliseconds(100), quiet, std::chrono::milliseconds(ms)});
    }

    // Runs a call while the chip plays its part, and gives the call's status.
    template <class Call>
    int play(CanScript script, Call call) {
        CanChip chip(std::move(script));
        const int status = call();
        EXPECT_EQ(chip.finish(), "");
        return status;
    }

    // The trace without time and port.
    std::string trace() const {
        std::ifstream file(bus->directory() + "/trace");
        std::string all, time, port, rest;
        while (file >> time >> port && std::getline(file, rest))
            if (!isRunLine(rest.substr(1)))
                all += rest.substr(1) + "\n";
        return all;
    }
    bool traced(const std::string &text) const { return trace().find(text) != std::string::npos; }

    std::unique_ptr<CanBusProcess> bus;
    HANDLE link = nullptr;
};
