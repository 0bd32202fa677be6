// User system data that are read twice in a row travel once, and no longer than nothing can have changed them.

#include <vector>

#include "tests/zvbl/Calls.h"
#include "tests/zvbl/LinkFixture.h"

namespace {

class UserDataTest : public LinkFixture {
protected:
    // The status; what came is kept.
    int read(unsigned address = 0x1FFFF800, unsigned length = 4) {
        BYTE data[16] = {};
        const int status = TARGET_GetUserSystemData(link, address, data, length);
        last = std::vector<BYTE>(data, data + length);
        return status;
    }

    // Reads, does something else for which the chip has its script, and reads again.
    template <class Between>
    int readAround(const Script &between, Between call, const Script &again) {
        Script script = first;
        script.insert(script.end(), between.begin(), between.end());
        script.insert(script.end(), again.begin(), again.end());
        return play(script, [&] {
            EXPECT_EQ(read(), 0);
            call();
            return read();
        });
    }

    const Script first = {{"E1 1E", "79"}, {"1F FF F8 00 18", "79"}, {"00 03 03", "79 A5 01 02 03 A5"}};
    const Script changed = {{"E1 1E", "79"}, {"1F FF F8 00 18", "79"}, {"00 03 03", "79 5A 01 02 03 5A"}};
    const std::vector<BYTE> firstData{0xA5, 1, 2, 3};
    const std::vector<BYTE> changedData{0x5A, 1, 2, 3};
    std::vector<BYTE> last;
};

TEST_F(UserDataTest, TheSecondReadingIsAnsweredByTheFirst) {
    EXPECT_EQ(readAround({}, [] {}, {}), 0);
    EXPECT_EQ(last, firstData);
}

TEST_F(UserDataTest, WhatOnlyReadsLeavesThemKnown) {
    BYTE version[3] = {};
    const auto ask = [&] { EXPECT_EQ(ZVBL_GET_VER_ROPS(link, &version[0], &version[1], &version[2]), 0); };
    EXPECT_EQ(readAround({{"01 FE", "79 21 34 12 79"}}, ask, {}), 0);
    EXPECT_EQ(last, firstData);
}

TEST_F(UserDataTest, AThirdReadingAsksAgain) {
    EXPECT_EQ(readAround(
                  {}, [&] { EXPECT_EQ(read(), 0); }, changed),
              0);
    EXPECT_EQ(last, changedData);
}

TEST_F(UserDataTest, WhatCouldChangeThemMakesThemUnknown) {
    EXPECT_EQ(readAround(
                  {{"44 BB", "79"}, {"FF FE 01", "79"}}, [&] { EXPECT_EQ(calls::eraseBank1(link), 0); }, changed),
              0);
    EXPECT_EQ(last, changedData);
}

TEST_F(UserDataTest, AStartMakesThemUnknown) {
    EXPECT_EQ(readAround(
                  {{"7F", "79"}}, [&] { EXPECT_EQ(calls::start(link), 0); }, changed),
              0);
    EXPECT_EQ(last, changedData);
}

TEST_F(UserDataTest, AControlLineMakesThemUnknown) {
    // A pseudo terminal has none, but it is what resets a chip.
    EXPECT_EQ(readAround(
                  {}, [&] { ZVBL_SetRts(link, 1); }, changed),
              0);
    EXPECT_EQ(last, changedData);
}

TEST_F(UserDataTest, OpeningAnewMakesThemUnknown) {
    EXPECT_EQ(readAround(
                  {}, [&] { EXPECT_EQ(Interface_Open(link), 0); }, changed),
              0);
    EXPECT_EQ(last, changedData);
}

TEST_F(UserDataTest, ARefusalMakesThemUnknown) {
    const auto refused = [&] { EXPECT_EQ(calls::eraseBank2(link), 0x13); };
    EXPECT_EQ(readAround({{"44 BB", "1F"}, {"7F", "1F"}}, refused, changed), 0);
    EXPECT_EQ(last, changedData);
}

TEST_F(UserDataTest, TheyAreNotBelievedForLong) {
    zvbl::Timing hasty = zvbl::timing();
    hasty.believed = {};
    zvbl::setTiming(hasty);
    EXPECT_EQ(readAround(
                  {}, [] {}, changed),
              0);
    EXPECT_EQ(last, changedData);
}

TEST_F(UserDataTest, OthersAreAskedFor) {
    const Script shorter = {{"E1 1E", "79"}, {"1F FF F8 00 18", "79"}, {"00 01 01", "79 A5 01 A4"}};
    EXPECT_EQ(readAround(
                  shorter, [&] { EXPECT_EQ(read(0x1FFFF800, 2), 0); }, changed),
              0);
    EXPECT_EQ(last, changedData);
    const Script elsewhere = {{"E1 1E", "79"}, {"1F FF C0 00 20", "79"}, {"00 03 03", "79 00 01 02 03 00"}};
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(readAround(
                  elsewhere, [&] { EXPECT_EQ(read(0x1FFFC000), 0); }, changed),
              0);
    EXPECT_EQ(last, changedData);
}

} // namespace
