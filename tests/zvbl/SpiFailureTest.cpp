// What goes wrong on SPI, at every step, and what the next command does about it.

#include <functional>

#include "tests/zvbl/FakeSpi.h"
#include "tests/zvbl/NodeFixture.h"
#include "tests/zvbl/Pty.h"

namespace {

const Exchanges opening = {{"5A 7F", "5A 1F"}};
const Exchanges reset = {{"5A D4 2B", "5A 79"}};
const Exchanges slib = {{"5A D3 2C", "5A 79 5A 00 FF FF FF FF FF FF 00"}};

Exchanges operator+(Exchanges left, const Exchanges &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// Commands that are sent once, so that a script holds one of each.
struct Once {
    const char *name;
    Exchanges script;
    std::function<int(HANDLE)> call;
};

const Once onces[] = {
    {"reset", reset, [](HANDLE h) { return ZVBL_ResetMCU(h); }},
    {"go", {{"5A 21 DE", "5A 79"}, {"5A 08 00 00 00 08", "5A 79"}}, [](HANDLE h) { return ZVBL_GO(h, 0x08000000); }},
    {"erase",
     {{"5A 44 BB", "5A 79"}, {"5A 00 00 00 07 07", "5A 79"}},
     [](HANDLE h) {
         BYTE sector[] = {7, 0};
         return ZVBL_ERASE(h, 1, sector, 2048);
     }},
    {"user system data",
     {{"5A E2 1D", "5A 79"}, {"5A 1F FF F8 00 18", "5A 79"}, {"5A 00 00 A5 A5", "5A 79 5A 79"}},
     [](HANDLE h) {
         BYTE data[] = {0xA5};
         return TARGET_SetUserSystemData(h, 0x1FFFF800, data, 1);
     }},
};

class SpiFailureTest : public NodeFixture<FakeSpi, 4> {
protected:
    void SetUp() override {
        NodeFixture::SetUp();
        setQuiet(5);
    }

    // How long the first opening byte is given.
    void setQuiet(int milliseconds) {
        zvbl::setTiming({Milliseconds(500), Milliseconds(milliseconds)});
        ASSERT_EQ(Interface_Open(link), 0);
        trace();
    }

    // For what is to take the whole time limit.
    void hurry(unsigned milliseconds = 60) { SetTimeOut(link, milliseconds); }

    template <class Call>
    int play(const Exchanges &script, Call call, std::uint8_t idle = 0) {
        fake.play(script, idle);
        const int status = call();
        EXPECT_EQ(fake.finish(), "");
        return status;
    }
    int init() { return ZVBL_Init_BL(link, 0, 0, 0); }
    int resetChip() { return ZVBL_ResetMCU(link); }

    // The link finds its way back, and the command after it is carried out.
    void expectUsable() {
        SetTimeOut(link, 5000);
        EXPECT_EQ(play(opening + reset, [&] { return resetChip(); }), 0);
    }
};

TEST_F(SpiFailureTest, AChipThatStartsIsWaitedFor) {
    EXPECT_EQ(play(Exchanges{{"5A 7F", ""}, {"5A 7F", ""}, {"5A 7F", "00 5A 79"}} + opening, [&] { return init(); }),
              0);
    EXPECT_EQ(play(Exchanges{{"5A 7F", "FF FF"}, {"5A 7F", "FF FF"}} + opening, [&] { return init(); }), 0);
}

// Nobody there: the line reads as 00, or as FF.
TEST_F(SpiFailureTest, WithoutAnAnswerTheStartIs0x11InTheTimeout) {
    hurry();
    for (const std::uint8_t line : {0x00, 0xFF}) {
        fake.play({}, line);
        const auto took = timeOf([&] { EXPECT_EQ(init(), 0x11); });
        EXPECT_GE(took, Milliseconds(60));
        EXPECT_LT(took, Milliseconds(2000));
    }
}

TEST_F(SpiFailureTest, AWrongAnswerToTheStartIs5) {
    hurry();
    const Exchange wrong = {"5A 7F", "5A 55"};
    fake.play(Exchanges(100, wrong));
    EXPECT_EQ(init(), 5);
    SetTimeOut(link, 5000);
    EXPECT_EQ(play(Exchanges{wrong} + opening, [&] { return init(); }), 0);
}

// The ACK of an old command is none of the opening byte's, which the working chip did not hear.
TEST_F(SpiFailureTest, ALateAnswerIsNotTakenForTheOpeningBytes) {
    setQuiet(100); // for the whole of the first answer
    hurry();
    EXPECT_EQ(play({{"5A D4 2B", ""}}, [&] { return resetChip(); }), 5);
    SetTimeOut(link, 5000);
    const Exchanges late = {{"5A 7F", "00 00 00 00 00 00 5A 79"}, {"5A 7F", ""}, {"5A 7F", "5A 79"}};
    EXPECT_EQ(play(late + opening + reset, [&] { return resetChip(); }), 0);
}

TEST_F(SpiFailureTest, AChipThatDoesNotComeBackIs5AndNothingIsSent) {
    hurry();
    EXPECT_EQ(play({{"5A D4 2B", ""}}, [&] { return resetChip(); }), 5);
    fake.play({});
    const auto took = timeOf([&] { EXPECT_EQ(resetChip(), 5); });
    EXPECT_LT(took, Milliseconds(2000));
    const std::string told = trace();
    const std::size_t step = told.find("# getting in step\n> 5A 7F\n");
    ASSERT_NE(step, std::string::npos) << told;
    EXPECT_EQ(told.find("D4", step), std::string::npos) << told;
    expectUsable();
}

TEST_F(SpiFailureTest, ACommandThatMayBeRepeatedIsNotSentOutOfStep) {
    hurry();
    BYTE enabled = 0;
    fake.play({{"5A D3 2C", ""}});
    EXPECT_EQ(ZVBL_GetSlibStatus(link, &enabled), 5);
    const std::string told = trace();
    EXPECT_EQ(told.find("5A D3 2C"), told.rfind("5A D3 2C")) << told;
    EXPECT_EQ(told.find("getting in step"), told.rfind("getting in step")) << told;
}

// At every place where an answer belongs: refused, wrong, no chip, none.
TEST_F(SpiFailureTest, EveryAnswerOfEveryCommand) {
    for (const Once &once : onces) {
        for (std::size_t i = 0; i < once.script.size(); ++i) {
            SCOPED_TRACE(std::string(once.name) + ", message " + std::to_string(i));
            Exchanges cut(once.script.begin(), once.script.begin() + static_cast<long>(i) + 1);
            cut.back().fetched = "00 00 00 00 5A 1F";
            EXPECT_EQ(play(cut, [&] { return once.call(link); }), i == 0 ? 0x13 : 0x14);
            EXPECT_EQ(play(reset, [&] { return resetChip(); }), 0); // still in step
            for (const char *wrong : {"5A 78", "5A 00 5A 79", "FF FF", "79 1F", "00 00 00 00 00 00 FF"}) {
                SCOPED_TRACE(wrong);
                cut.back().fetched = wrong;
                fake.play(cut, 0x00);
                EXPECT_EQ(once.call(link), 5);
                expectUsable();
            }
        }
    }
}

TEST_F(SpiFailureTest, NoAnswerAtEveryPlace) {
    for (const Once &once : onces) {
        for (std::size_t i = 0; i < once.script.size(); ++i) {
            SCOPED_TRACE(std::string(once.name) + ", message " + std::to_string(i));
            Exchanges cut(once.script.begin(), once.script.begin() + static_cast<long>(i) + 1);
            cut.back().fetched = "";
            hurry(15);
            EXPECT_EQ(play(cut, [&] { return once.call(link); }), 5);
            expectUsable();
        }
    }
}

TEST_F(SpiFailureTest, TheSecondAnswerCounts) {
    EXPECT_EQ(play({{"5A 82 7D", "5A 79 00 5A 1F"}}, [&] { return ZVBL_ACCESS_PROTECT(link); }), 0x14);
    EXPECT_EQ(play(reset, [&] { return resetChip(); }), 0);
    hurry();
    EXPECT_EQ(play({{"5A 82 7D", "5A 79"}}, [&] { return ZVBL_ACCESS_PROTECT(link); }), 5);
    expectUsable();
}

TEST_F(SpiFailureTest, ADamagedReplyIsAskedForAgain) {
    BYTE enabled = 9, length = 0;
    for (const char *damaged :
         {"5A 79 5A 01 00 04 00 06 01 07 04", "5A 79 5A 01 00 04", "5A 79 FF FF", "5A 79 5A 00 FF FF FF FF FF FF 01"}) {
        SCOPED_TRACE(damaged);
        EXPECT_EQ(
            play(Exchanges{{"5A D3 2C", damaged}} + opening + slib, [&] { return ZVBL_GetSlibStatus(link, &enabled); }),
            0);
        EXPECT_EQ(enabled, 0);
    }
    const Exchanges id = {{"5A 02 FD", "5A 79 5A 01 02 42 41 5A 79"}};
    for (const char *damaged : {"5A 79 5A 01 02 43 41", "5A 79 5A 04 02 42 41", "5A 79 5A 01 02 42 41 5A 78"}) {
        SCOPED_TRACE(damaged);
        fake.play(Exchanges{{"5A 02 FD", damaged}} + opening + id);
        EXPECT_EQ(ZVBL_GET_ID(link, &length, nullptr), 0);
        EXPECT_EQ(length, 2);
    }
}

TEST_F(SpiFailureTest, AReadIsCheckedByItsXor) {
    BYTE data[2] = {};
    const Exchanges address = {{"5A 11 EE", "5A 79"}, {"5A 20 00 00 00 20", "5A 79"}};
    const Exchanges wrong = address + Exchanges{{"5A 01 FE", "5A 79 5A 01 02 04"}};
    const Exchanges right = address + Exchanges{{"5A 01 FE", "5A 79 5A 01 02 03"}};
    EXPECT_EQ(play(wrong + opening + right, [&] { return ZVBL_UPLOAD(link, 0x20000000, data, 2); }), 0);
    EXPECT_EQ(data[1], 2);
}

TEST_F(SpiFailureTest, AWriteWhoseAnswerIsLostIsReadBack) {
    BYTE data[] = {1, 2, 3, 4};
    const Exchanges write = {{"5A 31 CE", "5A 79"}, {"5A 08 00 00 00 08", "5A 79"}, {"5A 03 01 02 03 04 07", "5A 00"}};
    const Exchanges read = {
        {"5A 11 EE", "5A 79"}, {"5A 08 00 00 00 08", "5A 79"}, {"5A 03 FC", "5A 79 5A 01 02 03 04 04"}};
    EXPECT_EQ(play(write + opening + read, [&] { return ZVBL_DNLOAD(link, 0x08000000, data, 4, 0); }), 0);
}

TEST_F(SpiFailureTest, PollingLeavesPauses) {
    hurry(150);
    EXPECT_EQ(play({{"5A D4 2B", ""}}, [&] { return resetChip(); }), 5);
    EXPECT_GT(fake.count(), 3);
    EXPECT_LT(fake.count(), 300);
}

// The adapter is pulled at each call in turn.
TEST_F(SpiFailureTest, AnAdapterThatGoesAwayIs4AtOnce) {
    for (const Once &once : onces) {
        for (int at = 0; at < static_cast<int>(once.script.size()); ++at) {
            for (const char *error : {"ESHUTDOWN", "ENODEV", "EIO", "ETIMEDOUT"}) {
                SCOPED_TRACE(std::string(once.name) + ", call " + std::to_string(at) + ", " + error);
                fake.failAt = at;
                fake.failure = error;
                fake.play(once.script);
                EXPECT_EQ(once.call(link), 4);
                EXPECT_EQ(once.call(link), 4);
                EXPECT_EQ(init(), 4);
                fake.failAt = -1;
                ASSERT_EQ(Interface_Open(link), 0);
            }
        }
    }
}

TEST_F(SpiFailureTest, WhileItIsToldItsSpeedToo) {
    fake.settingsFail = "ESHUTDOWN";
    EXPECT_EQ(play({}, [&] { return init(); }), 4);
}

TEST_F(SpiFailureTest, WhileItPollsToo) {
    fake.failAt = 4;
    fake.play({{"5A D4 2B", ""}});
    const auto took = timeOf([&] { EXPECT_EQ(resetChip(), 4); });
    EXPECT_LT(took, Milliseconds(2000));
    fake.failAt = 4;
    ASSERT_EQ(Interface_Open(link), 0);
    fake.play({{"5A 7F", ""}});
    const auto startTook = timeOf([&] { EXPECT_EQ(init(), 4); });
    EXPECT_LT(startTook, Milliseconds(2000));
}

TEST_F(SpiFailureTest, TheNodeIsOneProgrammersAtATime) {
    HANDLE second = nullptr;
    ASSERT_EQ(SetCOMSettings(&second, 0, ("/dev/" + fake.name()).c_str(), 0, 0, 0, 0), 0);
    EXPECT_EQ(Interface_Open(second), 3);
    EXPECT_NE(trace().find("# cannot open: Resource temporarily unavailable\n"), std::string::npos);
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_Open(second), 0);
    EXPECT_EQ(Interface_Close(second), 0);
}

TEST_F(SpiFailureTest, ADriverThatRefusesTheModeIsNotOpened) {
    fake.settingsFail = "EINVAL";
    EXPECT_EQ(Interface_Open(link), 3);
    EXPECT_NE(trace().find("# cannot open: mode 0 with 8 bits: Invalid argument\n"), std::string::npos);
    EXPECT_EQ(Interface_is_Open(link), 0);
}

TEST_F(SpiFailureTest, ABusHasNoControlLines) {
    EXPECT_EQ(ZVBL_SetDtr(link, 1), 4);
    EXPECT_EQ(ZVBL_SetRts(link, 0), 4);
    EXPECT_EQ(play(reset, [&] { return resetChip(); }), 0);
}

TEST_F(SpiFailureTest, AListThatNeverComesIs5) {
    const Exchanges list = {{"5A 00 FF", "5A 79"}};
    hurry();
    BYTE version = 0;
    Commands commands;
    EXPECT_EQ(play(list + opening + list + opening + list, [&] { return ZVBL_GET(link, &version, &commands); }), 5);
}

// Of what one call of the driver may carry.
TEST_F(SpiFailureTest, ADriverWithASmallBufferIsCalledMoreOften) {
    const auto callsWith = [&](const char *size) {
        const std::filesystem::path file =
            std::getenv("UMOCKDEV_DIR") + std::string("/sys/module/spidev/parameters/bufsiz");
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << size;
        EXPECT_EQ(Interface_Open(link), 0);
        EXPECT_EQ(play(reset, [&] { return resetChip(); }), 0);
        return fake.count();
    };
    const int usual = callsWith("4096\n");
    EXPECT_EQ(callsWith("0\n"), usual);
    EXPECT_EQ(callsWith("no number\n"), usual);
    EXPECT_GT(callsWith("128\n"), usual);
}

} // namespace
