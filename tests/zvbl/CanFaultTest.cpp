// What goes wrong on a CAN bus, frame by frame: the status, and that the next command works.

#include <atomic>
#include <thread>

#include "tests/zvbl/CanFixture.h"
#include "tests/zvbl/Pty.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Bits per second, where it matters that a frame comes right after another one, however busy the machine is.
constexpr unsigned slow = 10000;

const CanTurn inStep = {"07F", "17F 1F"};

class CanFaultTest : public CanFixture {
protected:
    int reset_() { return ZVBL_ResetMCU(link); }
    int reset() {
        return play({{"0D4", "1D4 79"}}, [&] { return ZVBL_ResetMCU(link); });
    }
    int resetAfterAFailure() {
        return play({inStep, {"0D4", "1D4 79"}}, [&] { return ZVBL_ResetMCU(link); });
    }
    int erase() {
        BYTE sector[] = {0x02, 0x01};
        return ZVBL_ERASE(link, 1, sector, 2048);
    }
    int write() {
        BYTE data[] = {0xAA, 0xBB, 0xCC, 0xDD};
        return ZVBL_DNLOAD(link, 0x08000000, data, 4, 0);
    }
    // Of sixteen bytes: two full frames and one with the check byte.
    int read(std::string &data) {
        BYTE bytes[16] = {};
        const int status = ZVBL_UPLOAD(link, 0x20000000, bytes, sizeof bytes);
        data = hex(zvbl::Bytes(bytes, bytes + sizeof bytes));
        return status;
    }
};

const CanScript reading = {{"011", "111 79"},
                           {"011 20 00 00 00 20", "111 79"},
                           {"011 0F F0", "111 79, 111 10 11 12 13 14 15 16 17, 111 18 19 1A 1B 1C 1D 1E 1F, 111 00"}};
const std::string wasRead = "10 11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F";

// The reading, with another end, and then what follows.
CanScript failing(const std::string &lastTurn, CanScript rest) {
    CanScript script = reading;
    script.back().chip = lastTurn;
    script.insert(script.end(), rest.begin(), rest.end());
    return script;
}

// Getting in step, and the whole reading.
CanScript again() {
    CanScript script = reading;
    script.insert(script.begin(), inStep);
    return script;
}

TEST_F(CanFaultTest, ARefusalLeavesTheLinkInStep) {
    EXPECT_EQ(play({{"044", "144 1F"}}, [&] { return erase(); }), 0x13);
    EXPECT_EQ(play({{"044", "144 79"}, {"044 00 00 01 02 03", "144 1F"}}, [&] { return erase(); }), 0x14);
    EXPECT_EQ(play({{"082", "182 79, 182 1F"}}, [&] { return ZVBL_ACCESS_PROTECT(link); }), 0x14);
    EXPECT_EQ(reset(), 0);
}

TEST_F(CanFaultTest, WhatMayBeRepeatedIsSentThreeTimes) {
    hurry();
    BYTE version = 0, reserve = 0, bid = 0;
    EXPECT_EQ(play({{"001", "101 1F"}, {"001", "101 1F"}, {"001", "101 1F"}},
                   [&] { return ZVBL_GET_VER_ROPS(link, &version, &reserve, &bid); }),
              0x13);
    EXPECT_EQ(play({{"001", ""}, inStep, {"001", "101 1F"}, {"001", "101 79, 101 21 FF 12 CC, 101 79"}},
                   [&] { return ZVBL_GET_VER_ROPS(link, &version, &reserve, &bid); }),
              0);
    EXPECT_EQ(version, 0x21);
}

TEST_F(CanFaultTest, SilenceAtEveryFrameOfWhatIsNotRepeated) {
    hurry();
    EXPECT_EQ(play({{"044", ""}}, [&] { return erase(); }), 5);
    EXPECT_EQ(play({inStep, {"044", "144 79"}, {"044 00 00 01 02 03", ""}}, [&] { return erase(); }), 5);
    EXPECT_EQ(play({inStep, {"082", "182 79"}}, [&] { return ZVBL_ACCESS_PROTECT(link); }), 5);
    EXPECT_EQ(resetAfterAFailure(), 0);
}

TEST_F(CanFaultTest, NoAnAnswerIs5) {
    EXPECT_EQ(play({{"044", "144 7A"}}, [&] { return erase(); }), 5);
    EXPECT_EQ(play({inStep, {"044", "144 79 79"}}, [&] { return erase(); }), 5);
    EXPECT_EQ(play({inStep, {"044", "144"}}, [&] { return erase(); }), 5);
    EXPECT_TRUE(traced("# not an answer"));
    EXPECT_EQ(resetAfterAFailure(), 0);
}

// Nobody is there for the way back either: nothing of the next command is sent.
TEST_F(CanFaultTest, ADeadChipIs5AndNeverHangs) {
    hurry();
    const auto from = steady_clock::now();
    EXPECT_EQ(erase(), 5);
    EXPECT_EQ(reset_(), 5);
    EXPECT_LT(steady_clock::now() - from, milliseconds(2000));
    EXPECT_EQ(trace().find("> 0D4"), std::string::npos);
}

TEST_F(CanFaultTest, EveryLostFrameOfAReplyIsNoticedAndItIsReadAgain) {
    hurry();
    const char *const lost[] = {
        "111 10 11 12 13 14 15 16 17, 111 18 19 1A 1B 1C 1D 1E 1F, 111 00", // the ACK
        "111 79, 111 18 19 1A 1B 1C 1D 1E 1F, 111 00",
        "111 79, 111 10 11 12 13 14 15 16 17, 111 00",
        "111 79, 111 10 11 12 13 14 15 16 17, 111 18 19 1A 1B 1C 1D 1E 1F",
    };
    for (const char *turn : lost) {
        SCOPED_TRACE(turn);
        std::string data;
        EXPECT_EQ(play(failing(turn, again()), [&] { return read(data); }), 0);
        EXPECT_EQ(data, wasRead);
    }
}

TEST_F(CanFaultTest, EveryDoubledOrDamagedFrameOfAReplyIsNoticed) {
    hurry();
    const char *const wrong[] = {
        "111 79, 111 79, 111 10 11 12 13 14 15 16 17, 111 18 19 1A 1B 1C 1D 1E 1F, 111 00",
        "111 79, 111 10 11 12 13 14 15 16 17, 111 10 11 12 13 14 15 16 17, 111 18 19 1A 1B 1C 1D 1E 1F, 111 00",
        "111 79, 111 10 11 12 13 14 15 16 17, 111 18 19 1A 1B 1C 1D 1E 1F, 111 18 19 1A 1B 1C 1D 1E 1F, 111 00",
        "111 79, 111 10 11 12 13 14 15 16 17, 111 18 19 1A 1B 1C 1D 1E 1E, 111 00",
        "111 79, 111 10 11 12 13 14 15 16, 111 18 19 1A 1B 1C 1D 1E 1F, 111 00",
        "111 79, 111",
    };
    for (const char *turn : wrong) {
        SCOPED_TRACE(turn);
        std::string data;
        EXPECT_EQ(play(failing(turn, again()), [&] { return read(data); }), 0);
        EXPECT_EQ(data, wasRead);
    }
}

// Two full frames: the same one twice has the sum of a sound reply. What follows may be held up for longer than a
// frame takes.
TEST_F(CanFaultTest, TwiceTheSameFrameIsNoReply) {
    setOpeningPause(6000, milliseconds(200));
    ASSERT_EQ(Interface_Open(link), 0);
    BYTE data[15] = {};
    const std::string first = "111 00 01 02 03 04 05 06 07", second = "111 08 09 0A 0B 0C 0D 0E 0F";
    const CanTurn start = {"011", "111 79"}, address = {"011 20 00 00 00 20", "111 79"};
    const CanTurn held = {"011 0E F1", "111 79, " + first + "," + first,
                          [] { std::this_thread::sleep_for(milliseconds(20)); }};
    const CanScript script = {start,  address, held,    {"", second},
                              inStep, start,   address, {"011 0E F1", "111 79, " + first + "," + second}};
    EXPECT_EQ(play(script, [&] { return ZVBL_UPLOAD(link, 0x20000000, data, 15); }), 0);
    EXPECT_EQ(data[14], 0x0E);
}

// Data that repeat are no fault.
TEST_F(CanFaultTest, EqualFramesThatEndAReplyAreData) {
    hurry();
    BYTE data[15] = {};
    const std::string blank = "111 FF FF FF FF FF FF FF FF";
    EXPECT_EQ(
        play({{"011", "111 79"}, {"011 20 00 00 00 20", "111 79"}, {"011 0E F1", "111 79, " + blank + "," + blank}},
             [&] { return ZVBL_UPLOAD(link, 0x20000000, data, 15); }),
        0);
    EXPECT_FALSE(traced("# more than the answer"));
}

// An ACK that came twice must not stand for that of the data, which are not written yet.
TEST_F(CanFaultTest, ADoubledAckWritesNothing) {
    openOn(slow);
    const CanTurn readBack[] = {
        {"011", "111 79"}, {"011 08 00 00 00 08", "111 79"}, {"011 03 FC", "111 79, 111 FF FF FF FF 00"}};
    const CanTurn write1 = {"031", "131 79"}, write2 = {"031 08 00 00 00 08", "131 79"},
                  write3 = {"031 03 AA BB CC DD 03", "131 79"};
    EXPECT_EQ(play({{"031", "131 79, 131 79"}, inStep, readBack[0], readBack[1], readBack[2], write1, write2, write3},
                   [&] { return write(); }),
              0);
    EXPECT_TRUE(traced("# more than the answer"));
    EXPECT_EQ(play({write1,
                    {"031 08 00 00 00 08", "131 79, 131 79"},
                    inStep,
                    readBack[0],
                    readBack[1],
                    readBack[2],
                    write1,
                    write2,
                    write3},
                   [&] { return write(); }),
              0);
}

// A long group leaves time for the doubled ACK to show, and nobody waits for it before each group. The
// chip gets all but the last frame.
TEST_F(CanFaultTest, ADoubledAckShowsWithinALongPacket) {
    openOn(50000);
    std::string allButTheLast = "031 FF 00 00 00 00 00 00 00", reply = "111 79";
    for (int i = 1; i < 32; ++i)
        allButTheLast += ",031 00 00 00 00 00 00 00 00";
    for (int i = 0; i < 32; ++i)
        reply += ",111 00 00 00 00 00 00 00 00";
    const CanTurn address = {"031 20 00 00 00 20", "131 79"};
    const CanScript script = {{"031", "131 79, 131 79"},
                              address,
                              {allButTheLast, ""},
                              inStep,
                              {"011", "111 79"},
                              {"011 20 00 00 00 20", "111 79"},
                              {"011 FF 00", reply + ",111 00"}};
    BYTE data[256] = {};
    EXPECT_EQ(play(script, [&] { return ZVBL_DNLOAD(link, 0x20000000, data, 256, 0); }), 0);
    EXPECT_TRUE(traced("# more than the answer"));
}

TEST_F(CanFaultTest, ADoubledAckErasesNothing) {
    openOn(slow);
    EXPECT_EQ(play({{"044", "144 79, 144 79"}}, [&] { return erase(); }), 5);
    EXPECT_EQ(resetAfterAFailure(), 0);
}

TEST_F(CanFaultTest, AnOldAnswerIsNeverTakenForANewOne) {
    hurry();
    EXPECT_EQ(play({{"044", ""}}, [&] { return erase(); }), 5);
    // Late: the ACK of then. It stands before the opening frame's answer, and is no answer any more.
    EXPECT_EQ(play({{"07F", "144 79, 17F 1F"}, {"044", "144 1F"}}, [&] { return erase(); }), 0x13);
    EXPECT_TRUE(traced("x 144 79"));
    // Later still: pending when the same command is sent again.
    CanChip chip(CanScript{{"044", "144 1F"}});
    chip.send("144 79");
    EXPECT_EQ(erase(), 0x13);
    EXPECT_EQ(chip.finish(), "");
}

// Answers of another command in between are none of this one's.
TEST_F(CanFaultTest, AnswersOfOtherCommandsArePassedOver) {
    EXPECT_EQ(
        play({{"044", "131 79, 17F 1F, 144 79"}, {"044 00 00 01 02 03", "111 1F, 144 79"}}, [&] { return erase(); }),
        0);
}

TEST_F(CanFaultTest, ABusFullOfLateAnswersIsNoAnswer) {
    hurry();
    std::atomic<bool> ended{false};
    CanChip flood(CanScript{});
    EXPECT_EQ(flood.finish(), "");
    std::thread babbling([&] {
        while (!ended)
            flood.send("131 79");
    });
    const auto from = steady_clock::now();
    EXPECT_EQ(erase(), 5);
    EXPECT_EQ(erase(), 5);
    EXPECT_LT(steady_clock::now() - from, milliseconds(3000));
    ended = true;
    babbling.join();
}

TEST_F(CanFaultTest, AChipThatStartsLosesOpeningFrames) {
    setOpeningPause(100);
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(play({{"07F", ""}, {"07F", "17F 79"}, {"0D4", "1D4 79"}},
                   [&] {
                       const int status = ZVBL_Init_BL(link, 0, 2, 0);
                       return status ? status : ZVBL_ResetMCU(link);
                   }),
              0);
}

TEST_F(CanFaultTest, NoAnswerToTheOpeningFrameIs0x11) {
    setOpeningPause(100);
    ASSERT_EQ(Interface_Open(link), 0);
    ASSERT_EQ(SetTimeOut(link, 250), 0);
    const auto from = steady_clock::now();
    EXPECT_EQ(play({{"07F", ""}, {"07F", ""}, {"07F", ""}}, [&] { return ZVBL_Init_BL(link, 0, 2, 0); }), 0x11);
    EXPECT_LT(steady_clock::now() - from, milliseconds(800));
    EXPECT_GE(steady_clock::now() - from, milliseconds(250));
}

TEST_F(CanFaultTest, AWrongAnswerToTheOpeningFrameIs5) {
    hurry();
    EXPECT_EQ(play({{"07F", "17F 55"}}, [&] { return ZVBL_Init_BL(link, 0, 2, 0); }), 5);
    EXPECT_EQ(play({{"07F", "17F 79 79"}}, [&] { return ZVBL_Init_BL(link, 0, 2, 0); }), 5);
    EXPECT_EQ(play({{"07F", "17F"}}, [&] { return ZVBL_Init_BL(link, 0, 2, 0); }), 5);
    EXPECT_EQ(play({{"07F", "17F 1F"}}, [&] { return ZVBL_Init_BL(link, 0, 2, 0); }), 0);
}

} // namespace
