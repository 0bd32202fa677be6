// The bit rate of the bus and of the chip.

#include "tests/zvbl/CanFixture.h"

namespace {

constexpr unsigned startSpeed = 250000;
const CanTurn inStep = {"07F", "17F 1F"};
const CanTurn opcode = {"003", "103 79"};

class CanSpeedTest : public CanFixture {
protected:
    void SetUp() override { openOn(startSpeed); }
    int setSpeed(unsigned long speed) { return ZVBL_SetSpeed(link, speed); }
    int start(unsigned long rate = 2) { return ZVBL_Init_BL(link, 0, rate, 0); }
};

TEST_F(CanSpeedTest, ByCodeAndByRate) {
    const struct {
        unsigned long speed;
        const char *group;
        const char *remark;
    } speeds[] = {
        {1, "003 01 FE", "125000"},      {125000, "003 01 FE", "125000"}, {3, "003 03 FC", "500000"},
        {500000, "003 03 FC", "500000"}, {4, "003 04 FB", "1000000"},     {1000000, "003 04 FB", "1000000"},
        {5, "003 05 FA", "100000"},      {100000, "003 05 FA", "100000"}, {6, "003 06 F9", "50000"},
        {50000, "003 06 F9", "50000"},   {7, "003 07 F8", "20000"},       {20000, "003 07 F8", "20000"},
        {8, "003 08 F7", "800000"},      {800000, "003 08 F7", "800000"},
    };
    for (const auto &speed : speeds) {
        SCOPED_TRACE(speed.speed);
        ASSERT_EQ(Interface_Open(link), 0);
        EXPECT_EQ(play({opcode, {speed.group, "103 79"}, inStep}, [&] { return setSpeed(speed.speed); }), 0);
        EXPECT_TRUE(traced(std::string("# the bus is at ") + speed.remark + " bit/s"));
        // At the end the chip is brought back to where the next link looks for it.
        EXPECT_EQ(play({opcode, {"003 02 FD", "103 79"}}, [&] { return Interface_Close(link); }), 0);
    }
}

TEST_F(CanSpeedTest, ZeroLeavesTheBusAndNothingIsSent) {
    EXPECT_EQ(play({}, [&] { return setSpeed(0); }), 0);
}

TEST_F(CanSpeedTest, TheSpeedThatTheBusHasNeedsNothing) {
    EXPECT_EQ(play({}, [&] { return setSpeed(2); }), 0);
    EXPECT_EQ(play({}, [&] { return setSpeed(250000); }), 0);
}

TEST_F(CanSpeedTest, WhatIsNotInTheTableIsNoArgument) {
    for (const unsigned long speed : {9UL, 10UL, 10000UL, 83333UL, 2000000UL, 0x1000003E8UL}) {
        SCOPED_TRACE(speed);
        EXPECT_EQ(play({}, [&] { return setSpeed(speed); }), 0x21);
        EXPECT_EQ(play({}, [&] { return start(speed); }), 0x21);
    }
}

// A virtual bus has no rate, and a chip that changed its own would be alone with it.
TEST_F(CanSpeedTest, ABusWithoutARateIsLeft) {
    openOn(0);
    EXPECT_EQ(play({}, [&] { return setSpeed(500000); }), 0);
    EXPECT_TRUE(traced("# the bus has no bit rate to set"));
    EXPECT_EQ(play({}, [&] { return setSpeed(3000); }), 0x21);
    EXPECT_EQ(play({{"07F", "17F 79"}}, [&] { return start(); }), 0);
}

TEST_F(CanSpeedTest, WithoutPermissionTheChipIsNotTold) {
    bus->tell("lock");
    EXPECT_EQ(play({}, [&] { return setSpeed(500000); }), 4);
    EXPECT_TRUE(traced("# the bus stays at 250000 bit/s: Operation not permitted"));
    // The link is none the worse for it.
    EXPECT_EQ(play({{"0D4", "1D4 79"}}, [&] { return ZVBL_ResetMCU(link); }), 0);
    EXPECT_EQ(play({}, [&] { return setSpeed(250000); }), 0);
}

TEST_F(CanSpeedTest, ADriverThatRefusesTheRateIs4) {
    bus->tell("fix");
    EXPECT_EQ(play({opcode, {"003 03 FC", "103 79"}}, [&] { return setSpeed(500000); }), 4);
    EXPECT_TRUE(traced("# the bus does not take 500000 bit/s: Invalid argument"));
    ASSERT_EQ(Interface_Open(link), 0); // it was taken up again
}

TEST_F(CanSpeedTest, AChipThatRefusesKeepsTheBus) {
    EXPECT_EQ(play({{"003", "103 1F"}}, [&] { return setSpeed(500000); }), 0x13);
    EXPECT_EQ(play({opcode, {"003 03 FC", "103 1F"}}, [&] { return setSpeed(500000); }), 0x14);
    EXPECT_FALSE(traced("# the bus is at"));
    EXPECT_EQ(play({{"0D4", "1D4 79"}}, [&] { return ZVBL_ResetMCU(link); }), 0);
}

// The last answer is lost, and the chip has changed.
TEST_F(CanSpeedTest, ALostAnswerIsLookedForAtTheNewSpeed) {
    hurry();
    EXPECT_EQ(play({opcode, {"003 03 FC", ""}, {"07F", ""}, inStep}, [&] { return setSpeed(500000); }), 0);
    EXPECT_TRUE(traced("# the bus is at 500000 bit/s"));
    EXPECT_EQ(play({{"003", "103 79"}, {"003 02 FD", "103 79"}}, [&] { return Interface_Close(link); }), 0);
}

// The group was lost, and the chip is where it was.
TEST_F(CanSpeedTest, ALostGroupIsSentAgain) {
    hurry();
    EXPECT_EQ(play({opcode, {"003 03 FC", ""}, inStep, opcode, {"003 03 FC", "103 79"}, inStep},
                   [&] { return setSpeed(500000); }),
              0);
}

TEST_F(CanSpeedTest, AChipThatIsAtNeitherSpeedIs5AndTheBusGoesBack) {
    hurry();
    EXPECT_EQ(play({opcode, {"003 03 FC", ""}, {"07F", ""}, {"07F", ""}}, [&] { return setSpeed(500000); }), 5);
    const std::string told = trace();
    EXPECT_NE(told.find("# the bus is at 250000 bit/s", told.find("# the bus is at 500000 bit/s")), std::string::npos);
}

TEST_F(CanSpeedTest, TheStartBringsTheBusToTheStartSpeedAndTheEndBack) {
    openOn(500000);
    EXPECT_EQ(play({{"07F", "17F 79"}}, [&] { return start(); }), 0);
    EXPECT_TRUE(traced("# the bus is at 250000 bit/s"));
    ASSERT_EQ(Interface_Open(link), 0); // closes it first
    const std::string told = trace();
    EXPECT_EQ(told.substr(told.rfind("# open")), "# open, 500000 bit/s\n");
}

TEST_F(CanSpeedTest, AStartWithoutARateLeavesTheBus) {
    openOn(500000);
    EXPECT_EQ(play({{"07F", "17F 79"}}, [&] { return start(0); }), 0);
    EXPECT_FALSE(traced("# the bus is at"));
}

// A chip that nobody reset since it was told another speed.
TEST_F(CanSpeedTest, TheStartLooksAtTheSpeedThatTheBusHadToo) {
    openOn(500000);
    hurry(600);
    EXPECT_EQ(play({{"07F", ""}, {"07F", "17F 1F"}}, [&] { return start(); }), 0);
    const std::string told = trace();
    EXPECT_NE(told.find("# the bus is at 500000 bit/s", told.find("# the bus is at 250000 bit/s")), std::string::npos);
    EXPECT_EQ(play({}, [&] { return setSpeed(500000); }), 0);
}

// Wrong rates take a controller off the bus. That is no reason not to look at the other one.
TEST_F(CanSpeedTest, BusOffAtOneSpeedIsNoEndOfTheStart) {
    openOn(500000);
    EXPECT_EQ(play({{"07F", "", [&] { bus->tell("bus-off"); }}, {"07F", "17F 1F"}}, [&] { return start(); }), 0);
}

TEST_F(CanSpeedTest, AStartWithoutPermissionSendsNothing) {
    openOn(500000);
    bus->tell("lock");
    EXPECT_EQ(play({}, [&] { return start(); }), 4);
    EXPECT_TRUE(traced("# the bus stays at 500000 bit/s: Operation not permitted"));
    EXPECT_EQ(play({{"07F", "17F 1F"}}, [&] { return start(0); }), 0);
}

// After a reset the chip is at its start speed again, and nobody has to bring it there.
TEST_F(CanSpeedTest, AfterAResetTheEndTellsTheChipNothing) {
    EXPECT_EQ(play({opcode, {"003 03 FC", "103 79"}, inStep}, [&] { return setSpeed(500000); }), 0);
    EXPECT_EQ(play({{"0D4", "1D4 79"}}, [&] { return ZVBL_ResetMCU(link); }), 0);
    EXPECT_EQ(play({}, [&] { return Interface_Close(link); }), 0);
}

} // namespace
