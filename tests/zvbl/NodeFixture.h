#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "libs/zvbl/Timing.h"
#include "link/ZVBLLIB.h"
#include "tests/zvbl/TraceText.h"

// An open link of one type on a fake node, through the C interface, with a trace.
template <class Fake, BYTE type>
class NodeFixture : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/zvbl-node-XXXXXX";
        directory = mkdtemp(name);
        setenv("ZVBL_TRACE", (directory / "trace").c_str(), 1);
        zvbl::setTiming({});
        TARGET_SetComIntType(type);
        ASSERT_EQ(SetCOMSettings(&link, 0, fake.name().c_str(), 115200, 8, 2, 1.0F), 0);
        ASSERT_EQ(Interface_Open(link), 0);
    }
    void TearDown() override {
        Interface_Close(link);
        TARGET_SetComIntType(0);
        unsetenv("ZVBL_TRACE");
        std::filesystem::remove_all(directory);
    }

    // What the trace holds since the last time, without times and names.
    std::string trace() {
        std::ifstream in(directory / "trace");
        std::string text, line;
        for (long number = 0; std::getline(in, line); ++number) {
            if (number < traced)
                continue;
            ++traced;
            const std::string told = line.substr(line.find(' ', line.find(' ') + 1) + 1);
            if (!isRunLine(told))
                text += told + '\n';
        }
        return text;
    }

    Fake fake;
    HANDLE link = nullptr;
    std::filesystem::path directory;
    long traced = 0;
};

using Milliseconds = std::chrono::milliseconds;

// How long a call takes.
template <class Call>
Milliseconds timeOf(Call call) {
    const auto begin = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - begin);
}
