// What goes wrong on I2C, at every step, and what the next command does about it.

#include <functional>

#include "tests/zvbl/FakeI2c.h"
#include "tests/zvbl/NodeFixture.h"
#include "tests/zvbl/Pty.h"

namespace {

const Transfers get = {"> 00 FF", "< 79", "< 01", "> 00 FF", "< 79", "< 01 31 00", "< 79"};
const Transfers reset = {"> D4 2B", "< 79"};
const Transfers slib = {"> D3 2C", "< 79", "< 00 FF FF FF FF FF FF 00"};

Transfers operator+(Transfers left, const Transfers &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// Commands that are sent once, so that a script holds one of each.
struct Once {
    const char *name;
    Transfers script;
    std::function<int(HANDLE)> call;
};

const Once onces[] = {
    {"reset", reset, [](HANDLE h) { return ZVBL_ResetMCU(h); }},
    {"go", {"> 21 DE", "< 79", "> 08 00 00 00 08", "< 79"}, [](HANDLE h) { return ZVBL_GO(h, 0x08000000); }},
    {"erase",
     {"> 44 BB", "< 79", "> 00 00 00", "< 79", "> 00 07 07", "< 76", "< 79"},
     [](HANDLE h) {
         BYTE sector[] = {7, 0};
         return ZVBL_ERASE(h, 1, sector, 2048);
     }},
    {"access protection", {"> 82 7D", "< 79", "< 76", "< 79"}, [](HANDLE h) { return ZVBL_ACCESS_PROTECT(h); }},
    {"user system data",
     {"> E2 1D", "< 79", "> 1F FF F8 00 18", "< 79", "> 00 00 A5 A5", "< 79", "< 79"},
     [](HANDLE h) {
         BYTE data[] = {0xA5};
         return TARGET_SetUserSystemData(h, 0x1FFFF800, data, 1);
     }},
};

class I2cFailureTest : public NodeFixture<FakeI2c, 2> {
protected:
    // For what is to take the whole time limit.
    void hurry(unsigned milliseconds = 60) { SetTimeOut(link, milliseconds); }

    template <class Call>
    int play(const Transfers &script, Call call, const std::string &rest = "") {
        fake.play(script, rest);
        const int status = call();
        EXPECT_EQ(fake.finish(), "");
        return status;
    }
    int init() { return ZVBL_Init_BL(link, 0, 0, 0); }

    // The link finds its way back, and the command after it is carried out.
    void expectUsable() {
        SetTimeOut(link, 5000);
        EXPECT_EQ(play(get + reset, [&] { return ZVBL_ResetMCU(link); }), 0);
    }
};

TEST_F(I2cFailureTest, AChipThatStartsIsWaitedFor) {
    for (const char *error : {"ENXIO", "EREMOTEIO", "EAGAIN", "EIO", "ETIMEDOUT", "EBUSY"}) {
        const std::string fails = std::string(">! ") + error;
        EXPECT_EQ(play(Transfers(6, fails) + get, [&] { return init(); }), 0) << error;
    }
}

TEST_F(I2cFailureTest, WithoutAnAcknowledgeTheStartIs0x11InTheTimeout) {
    hurry();
    for (const char *error : {"ENXIO", "EIO"}) {
        trace();
        const auto took = timeOf([&] {
            EXPECT_EQ(play(
                          {}, [&] { return init(); }, std::string(">! ") + error),
                      0x11)
                << error;
        });
        EXPECT_GE(took, Milliseconds(60));
        EXPECT_LT(took, Milliseconds(2000));
        const std::string told = trace();
        EXPECT_EQ(told.find("# not acknowledged"), told.rfind("# not acknowledged")) << told; // once
    }
}

TEST_F(I2cFailureTest, AStartThatEndsAnOldCommand) {
    EXPECT_EQ(play(Transfers{"> 00 FF", "< 1F"} + get, [&] { return init(); }), 0);
    // READ waited for its count and took GET for it: the byte is none of GET's.
    const Transfers read = {"> 00 FF", "< 79", "< 02", "> 00 FF", "< 79", "< 01 31 00 FF"};
    EXPECT_EQ(play(read + get, [&] { return init(); }), 0);
    // And a command that takes GET for its last group has no reply at all.
    const Transfers remap = {"> 00 FF", "< 79", "< FF", "> 00 FF", "< 1F"};
    EXPECT_EQ(play(remap + get, [&] { return init(); }), 0);
}

TEST_F(I2cFailureTest, WrongAnswersToTheStartAre5) {
    EXPECT_EQ(play({"> 00 FF", "< FF", "> 00 FF", "< FF", "> 00 FF", "< 55"}, [&] { return init(); }), 5);
    EXPECT_EQ(play({"> 00 FF", "< 1F", "> 00 FF", "< 1F", "> 00 FF", "< 1F"}, [&] { return init(); }), 5);
    hurry();
    const auto took = timeOf([&] {
        EXPECT_EQ(play(
                      {"> 00 FF"}, [&] { return init(); }, "< 76"),
                  5);
    });
    EXPECT_LT(took, Milliseconds(2000));
    SetTimeOut(link, 5000);
    EXPECT_EQ(play(get, [&] { return init(); }), 0);
}

TEST_F(I2cFailureTest, ACommandWaitsForAChipThatStarts) {
    EXPECT_EQ(play(Transfers(4, ">! ENXIO") + reset, [&] { return ZVBL_ResetMCU(link); }), 0);
    EXPECT_EQ(play(Transfers(4, ">! EREMOTEIO") + reset, [&] { return ZVBL_ResetMCU(link); }), 0);
}

// The chip may have taken it, and then it would be carried out twice.
TEST_F(I2cFailureTest, AnOpcodeOfWhichNobodyKnowsIsNotSentAgain) {
    for (const char *error : {"EIO", "ETIMEDOUT"}) {
        EXPECT_EQ(play({std::string(">! ") + error}, [&] { return ZVBL_ResetMCU(link); }), 5) << error;
        expectUsable();
    }
}

TEST_F(I2cFailureTest, ACommandThatNobodyTakesIs5InTheTimeout) {
    hurry();
    const auto took = timeOf([&] {
        EXPECT_EQ(play(
                      {}, [&] { return ZVBL_ResetMCU(link); }, ">! ENXIO"),
                  5);
        EXPECT_EQ(play(
                      {}, [&] { return ZVBL_ResetMCU(link); }, ">! ENXIO"),
                  5);
    });
    EXPECT_LT(took, Milliseconds(2000));
    EXPECT_NE(trace().find("# getting in step\n> 00 FF\n"), std::string::npos);
    expectUsable();
}

// One time limit for the command and one for getting in step, however often it may be sent.
TEST_F(I2cFailureTest, ACommandThatMayBeRepeatedCostsTwoTimeLimits) {
    hurry();
    BYTE enabled = 0;
    trace();
    EXPECT_EQ(play(
                  {}, [&] { return ZVBL_GetSlibStatus(link, &enabled); }, ">! ENXIO"),
              5);
    EXPECT_EQ(trace(), "> D3 2C\n# not acknowledged: No such device or address\n# no answer in time\n"
                       "# getting in step\n> 00 FF\n# no answer in time\n");
}

TEST_F(I2cFailureTest, AGroupThatIsNotTakenEndsTheCommand) {
    for (const Once &once : onces) {
        for (std::size_t i = 2; i < once.script.size(); ++i) {
            if (once.script[i][0] != '>')
                continue;
            SCOPED_TRACE(once.name);
            const Transfers cut(once.script.begin(), once.script.begin() + static_cast<long>(i));
            EXPECT_EQ(play(cut + Transfers{">! ENXIO"}, [&] { return once.call(link); }), 5);
            EXPECT_EQ(play(Transfers{"> 00 FF", "< 1F"} + get + once.script, [&] { return once.call(link); }), 0);
        }
    }
}

// At every place where an answer belongs: refused, wrong, none.
TEST_F(I2cFailureTest, EveryAnswerOfEveryCommand) {
    for (const Once &once : onces) {
        for (std::size_t i = 1; i < once.script.size(); ++i) {
            if (once.script[i] != "< 79")
                continue;
            SCOPED_TRACE(std::string(once.name) + ", transfer " + std::to_string(i));
            const Transfers cut(once.script.begin(), once.script.begin() + static_cast<long>(i));
            EXPECT_EQ(play(cut + Transfers{"< 1F"}, [&] { return once.call(link); }), i == 1 ? 0x13 : 0x14);
            EXPECT_EQ(play(reset, [&] { return ZVBL_ResetMCU(link); }), 0); // still in step
            EXPECT_EQ(play(cut + Transfers{"< FF"}, [&] { return once.call(link); }), 5);
            expectUsable();
            EXPECT_EQ(play(cut + Transfers{"<! ENXIO", "<! EIO", "< 78"}, [&] { return once.call(link); }), 5);
            expectUsable();
        }
    }
}

TEST_F(I2cFailureTest, AnAnswerMayBeAskedForAgain) {
    EXPECT_EQ(
        play({"> D4 2B", "<! ENXIO", "<! EIO", "< 76", "<! ETIMEDOUT", "< 79"}, [&] { return ZVBL_ResetMCU(link); }),
        0);
}

TEST_F(I2cFailureTest, AChipThatStaysBusyIs5AndIsFoundWhenItIsDone) {
    hurry();
    EXPECT_EQ(play(
                  {"> D4 2B"}, [&] { return ZVBL_ResetMCU(link); }, "< 76"),
              5);
    SetTimeOut(link, 5000);
    EXPECT_EQ(play(Transfers(3, ">! ENXIO") + get + reset, [&] { return ZVBL_ResetMCU(link); }), 0);
}

TEST_F(I2cFailureTest, PollingLeavesPauses) {
    hurry(150);
    EXPECT_EQ(play(
                  {"> D4 2B"}, [&] { return ZVBL_ResetMCU(link); }, "< 76"),
              5);
    EXPECT_LT(fake.count(), 300);
    EXPECT_GT(fake.count(), 3);
}

TEST_F(I2cFailureTest, ADamagedReplyIsAskedForAgain) {
    BYTE enabled = 9, version = 0, length = 0;
    Commands commands;
    const Transfers shortOne = {"> D3 2C", "< 79", "< 01 00 04 FF FF FF FF FF"};
    EXPECT_EQ(play(shortOne + get + slib, [&] { return ZVBL_GetSlibStatus(link, &enabled); }), 0);
    const Transfers noReply = {"> D3 2C", "< 79", "<! EREMOTEIO"};
    EXPECT_EQ(play(noReply + get + slib, [&] { return ZVBL_GetSlibStatus(link, &enabled); }), 0);
    const Transfers otherCount = {"> 00 FF", "< 79", "< 02", "> 00 FF", "< 79", "< 01 31 00 FF"};
    EXPECT_EQ(play(otherCount + get + get, [&] { return ZVBL_GET(link, &version, &commands); }), 0);
    const Transfers noCount = {"> 02 FD", "< 79", "<! EIO"};
    const Transfers id = {"> 02 FD", "< 79", "< 01", "> 02 FD", "< 79", "< 01 02 42", "< 79"};
    EXPECT_EQ(play(noCount + get + id, [&] { return ZVBL_GET_ID(link, &length, nullptr); }), 0);
    EXPECT_EQ(length, 2);
}

TEST_F(I2cFailureTest, AWriteWhoseAnswerIsLostIsReadBack) {
    BYTE data[] = {1, 2, 3, 4};
    const Transfers write = {"> 31 CE", "< 79", "> 08 00 00 00 08", "< 79", "> 03 01 02 03 04 07", "< FF"};
    const Transfers read = {"> 11 EE", "< 79", "> 08 00 00 00 08", "< 79", "> 03 FC", "< 79", "< 01 02 03 04"};
    EXPECT_EQ(play(write + get + read, [&] { return ZVBL_DNLOAD(link, 0x08000000, data, 4, 0); }), 0);
}

// The adapter is pulled at each transfer in turn; its driver answers what drivers do.
TEST_F(I2cFailureTest, AnAdapterThatGoesAwayIs4AtOnce) {
    for (const Once &once : onces) {
        for (int at = 0; at < static_cast<int>(once.script.size()); ++at) {
            for (const char *error : {"EIO", "ENXIO"}) {
                SCOPED_TRACE(std::string(once.name) + ", transfer " + std::to_string(at) + ", " + error);
                FakeI2c other;
                ASSERT_EQ(Interface_Open(link), 0);
                other.failAt = at;
                other.failure = error;
                other.play(once.script);
                const auto took = timeOf([&] { EXPECT_EQ(once.call(link), 4); });
                EXPECT_LT(took, Milliseconds(2000));
                EXPECT_EQ(once.call(link), 4);
                EXPECT_EQ(init(), 4);
                EXPECT_EQ(Interface_Close(link), 0);
            }
        }
    }
}

TEST_F(I2cFailureTest, AnAdapterThatIsGoneIs3AndComesBack) {
    fake.unplug();
    EXPECT_EQ(play({"! EIO"}, [&] { return ZVBL_ResetMCU(link); }), 4);
    EXPECT_EQ(Interface_is_Open(link), 1);
    EXPECT_EQ(Interface_Open(link), 3);
    EXPECT_EQ(Interface_is_Open(link), 0);
    EXPECT_NE(trace().find("# the device is gone\n# closed\n# cannot open: No such file or directory\n"),
              std::string::npos);
    FakeI2c back;
    EXPECT_EQ(Interface_Open(link), 0);
    back.play(reset);
    EXPECT_EQ(ZVBL_ResetMCU(link), 0);
    EXPECT_EQ(back.finish(), "");
    Interface_Close(link);
}

TEST_F(I2cFailureTest, ADriverThatSaysSoIs4WithItsNodeStillThere) {
    for (const char *error : {"ENODEV", "ESHUTDOWN"}) {
        ASSERT_EQ(Interface_Open(link), 0);
        EXPECT_EQ(play({std::string("! ") + error}, [&] { return ZVBL_ResetMCU(link); }), 4);
        EXPECT_EQ(play({}, [&] { return ZVBL_ResetMCU(link); }), 4); // for good
    }
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(play(reset, [&] { return ZVBL_ResetMCU(link); }), 0);
}

TEST_F(I2cFailureTest, AnAdapterThatCannotDoItIs4ForThisOnce) {
    BYTE data[] = {1};
    trace();
    EXPECT_EQ(play({"> 31 CE", "< 79", "> 20 00 00 00 20", "< 79", ">! EOPNOTSUPP"},
                   [&] { return ZVBL_DNLOAD(link, 0x20000000, data, 1, 0); }),
              4);
    EXPECT_NE(trace().find("# cannot send: Operation not supported\n"), std::string::npos);
    EXPECT_EQ(play(Transfers{"> 00 FF", "< 1F"} + get + reset, [&] { return ZVBL_ResetMCU(link); }), 0);
}

TEST_F(I2cFailureTest, TheNodeIsOneProgrammersAtATime) {
    HANDLE second = nullptr;
    ASSERT_EQ(SetCOMSettings(&second, 0, ("/dev/" + fake.name()).c_str(), 0, 0, 0, 0), 0);
    EXPECT_EQ(Interface_Open(second), 3);
    EXPECT_NE(trace().find("# cannot open: Resource temporarily unavailable\n"), std::string::npos);
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_Open(second), 0);
    EXPECT_EQ(Interface_Close(second), 0);
}

TEST_F(I2cFailureTest, AnAdapterWithoutPlainTransfersIsNotOpened) {
    fake.functions = 0x0EFF0008; // SMBus alone
    EXPECT_EQ(Interface_Open(link), 3);
    EXPECT_NE(trace().find("# cannot open: the adapter speaks SMBus only\n"), std::string::npos);
    EXPECT_EQ(Interface_is_Open(link), 0);
    fake.functions = 0x0EFF0009;
    EXPECT_EQ(Interface_Open(link), 0);
}

TEST_F(I2cFailureTest, ABusHasNoControlLines) {
    EXPECT_EQ(ZVBL_SetDtr(link, 1), 4);
    EXPECT_EQ(ZVBL_SetRts(link, 0), 4);
    EXPECT_EQ(play(reset, [&] { return ZVBL_ResetMCU(link); }), 0);
    EXPECT_EQ(SetCOMSettings(&link, 0, fake.name().c_str(), 9600, 7, 1, 2.0F), 0); // nothing to change
    EXPECT_EQ(play(reset, [&] { return ZVBL_ResetMCU(link); }), 0);
}

} // namespace
