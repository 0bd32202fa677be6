// A device that never stops talking: every call comes back, and the trace stays small.

#include <cstdlib>
#include <filesystem>

#include "tests/zvbl/Babbler.h"
#include "tests/zvbl/LinkFixture.h"

namespace {

using std::chrono::steady_clock;

class BabbleTest : public LinkFixture {
protected:
    void SetUp() override {
        char name[] = "/tmp/zvbl-babble-XXXXXX";
        directory = mkdtemp(name);
        setenv("ZVBL_TRACE", (directory / "trace").c_str(), 1);
        LinkFixture::SetUp();
        hurry();
    }
    void TearDown() override {
        unsetenv("ZVBL_TRACE");
        LinkFixture::TearDown();
        std::filesystem::remove_all(directory);
    }
    int version() { return ZVBL_GET_VER_ROPS(link, &bytes[0], &bytes[1], &bytes[2]); }

    // A call that has to fail, and soon.
    template <class Call>
    void expectNoAnswer(Call call) {
        const auto from = steady_clock::now();
        EXPECT_EQ(call(), 5);
        EXPECT_LT(steady_clock::now() - from, std::chrono::seconds(5));
    }

    const zvbl::Bytes noise = zvbl::Bytes(512, 0x55);
    BYTE bytes[3] = {};
    std::filesystem::path directory;
};

TEST_F(BabbleTest, BeforeACommand) {
    const Babbler babbler(pty, noise);
    expectNoAnswer([&] { return version(); });
    expectNoAnswer([&] { return version(); });
}

TEST_F(BabbleTest, BeforeTheOpeningByte) {
    const Babbler babbler(pty, noise);
    expectNoAnswer([&] { return int(ZVBL_Init_BL(link, 0, 0, 0)); });
}

TEST_F(BabbleTest, AfterTheOpeningByte) {
    const Babbler babbler(pty, noise, Babbler::Begin::whenSpokenTo);
    expectNoAnswer([&] { return int(ZVBL_Init_BL(link, 0, 0, 0)); });
}

TEST_F(BabbleTest, WhatIsDiscardedIsCountedInTheTraceAboveALimit) {
    {
        const Babbler babbler(pty, noise);
        expectNoAnswer([&] { return version(); });
    }
    Interface_Close(link);
    EXPECT_LT(std::filesystem::file_size(directory / "trace"), 100000U);
    const std::string count = "grep -Eq ' x [0-9]+ more$' " + (directory / "trace").string();
    EXPECT_EQ(std::system(count.c_str()), 0);
}

} // namespace
