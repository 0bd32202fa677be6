// A serial-line CAN adapter, line by line: what is sent to it is typed from the protocol that such adapters
// have in common, what travels in the frames from docs/wire-protocol.md.

#include <atomic>
#include <filesystem>
#include <fstream>

#include <asm/termbits.h>
#include <sys/ioctl.h>

#include "libs/zvbl/Timing.h"
#include "link/ZVBLLIB.h"
#include "tests/zvbl/Babbler.h"
#include "tests/zvbl/LinkFixture.h"
#include "tests/zvbl/TraceText.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

zvbl::Bytes bytesOf(const std::string &text) {
    return {text.begin(), text.end()};
}

// These characters from the host, then these from the adapter.
Turn line(const std::string &host, const std::string &adapter) {
    return {bytesOf(host), hex(bytesOf(adapter))};
}

Script operator+(Script one, const Script &other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

// The channel is closed, whatever was going on, and opened at 250,000.
const Script bringUp = {line("\r\r\rC\r", "\a\a\a\r"), line("S5\r", "\r"), line("O\r", "\r")};
const Script opening = bringUp + Script{line("V\r", "V1013\r")};
const Script closing = {line("C\r", "\r")};
const std::string full = "t03180000000000000000\r"; // of a WRITE
const Turn inStep = line("t07F0\r", "z\rt17F11F\r");

class CanAdapterTest : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/zvbl-adapter-XXXXXX";
        directory = mkdtemp(name);
        setenv("ZVBL_TRACE", (directory / "trace").c_str(), 1);
        zvbl::setTiming({milliseconds(100), milliseconds(5), milliseconds(6000)});
        TARGET_SetComIntType(3);
        ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().c_str(), 1000000, 8, 2, 1.0F), 0);
        ASSERT_EQ(SetTimeOut(link, 5000), 0);
        ASSERT_EQ(play(opening, [&] { return Interface_Open(link); }), 0);
    }
    void TearDown() override {
        play(atTheEnd, [&] { return Interface_Close(link); });
        unsetenv("ZVBL_TRACE");
        zvbl::setTiming({});
        std::filesystem::remove_all(directory);
    }
    void hurry() { ASSERT_EQ(SetTimeOut(link, 300), 0); }

    template <class Call>
    int play(Script script, Call call) {
        ScriptedChip adapter(pty, std::move(script));
        const int status = call();
        EXPECT_EQ(adapter.finish(), "");
        return status;
    }
    int reset() { return ZVBL_ResetMCU(link); }
    int resetWorks() {
        return play({line("t0D40\r", "z\rt1D4179\r")}, [&] { return reset(); });
    }
    std::string trace() const {
        std::ifstream file(directory / "trace");
        std::string all, time, port, rest;
        while (file >> time >> port && std::getline(file, rest))
            if (!isRunLine(rest.substr(1)))
                all += rest.substr(1) + "\n";
        return all;
    }
    bool traced(const std::string &text) const { return trace().find(text) != std::string::npos; }

    Pty pty;
    HANDLE link = nullptr;
    std::filesystem::path directory;
    Script atTheEnd = closing;
};

TEST_F(CanAdapterTest, TheLineIs8N1AtTheRateOfTheSettings) {
    termios2 settings{};
    ASSERT_EQ(ioctl(pty.hostEnd(), TCGETS2, &settings), 0);
    EXPECT_EQ(settings.c_cflag & CSIZE, CS8);
    EXPECT_EQ(settings.c_cflag & (PARENB | CSTOPB), 0U);
    EXPECT_EQ(settings.c_ospeed, 1000000U);
}

TEST_F(CanAdapterTest, CommandsAreLines) {
    EXPECT_EQ(play({line("t07F0\r", "z\rt17F179\r")}, [&] { return ZVBL_Init_BL(link, 0, 2, 0); }), 0);
    BYTE sector[] = {0x02, 0x01};
    EXPECT_EQ(play({line("t0440\r", "z\rt144179\r"), line("t04450000010203\r", "z\rt144179\r")},
                   [&] { return ZVBL_ERASE(link, 1, sector, 2048); }),
              0);
    BYTE data[12] = {};
    EXPECT_EQ(play({line("t0110\r", "z\rt111179\r"), line("t01151FFFF7E8FF\r", "z\rt111179\r"),
                    line("t01120BF4\r", "z\rt111179\rt11180102030405060708\rt1115090A0B0C0C\r")},
                   [&] { return ZVBL_UPLOAD(link, 0x1FFFF7E8, data, 12); }),
              0);
    EXPECT_EQ(hex(zvbl::Bytes(data, data + 12)), "01 02 03 04 05 06 07 08 09 0A 0B 0C");
    BYTE more[] = {0xAA, 0xBB, 0xCC, 0xDD, 1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(play({line("t0310\r", "z\rt131179\r"), line("t03150800000008\r", "z\rt131179\r"),
                    line("t03180BAABBCCDD010203\rt0316040506070803\r", "z\rz\rt131179\r")},
                   [&] { return ZVBL_DNLOAD(link, 0x08000000, more, 12, 0); }),
              0);
}

// Some say yes with z, some with nothing but the end of the line. Some put a time stamp after a frame, some
// write small digits, and other frames of the bus come in between.
TEST_F(CanAdapterTest, AdaptersDiffer) {
    EXPECT_EQ(play({line("t0D40\r", "\rt1D4179\r")}, [&] { return reset(); }), 0);
    EXPECT_EQ(play({line("t0D40\r", "z\rt1D4179A0F3\r")}, [&] { return reset(); }), 0);
    EXPECT_EQ(play({line("t0D40\r", "t1d4179\rz\r")}, [&] { return reset(); }), 0);
    EXPECT_EQ(play({line("t0D40\r", "T000001D4179\rr1D40\rR000001D40\rt0D4179\rt2D4179\rz\rt1D4179\r")},
                   [&] { return reset(); }),
              0);
}

TEST_F(CanAdapterTest, AFrameMayBeEmpty) {
    hurry();
    EXPECT_EQ(play({line("t0D40\r", "z\rt1D40\r")}, [&] { return reset(); }), 5);
    EXPECT_FALSE(traced("not a frame"));
}

TEST_F(CanAdapterTest, ALineThatIsNoFrameIsNoAnswer) {
    hurry();
    for (const char *damaged : {"t1D417\r", "t1D41G9\r", "t1D49\r", "t1D\r", "t1D417979\r"}) {
        SCOPED_TRACE(damaged);
        const auto from = steady_clock::now();
        EXPECT_EQ(play({line("t0D40\r", std::string("z\r") + damaged), line("F\r", "F00\r")}, [&] { return reset(); }),
                  5);
        EXPECT_LT(steady_clock::now() - from, milliseconds(1500));
        EXPECT_EQ(play({inStep, line("t0D40\r", "z\rt1D4179\r")}, [&] { return reset(); }), 0);
    }
    EXPECT_TRUE(traced("x not a frame: t1D41G9"));
}

TEST_F(CanAdapterTest, AfterSilenceTheTraceSaysWhatTheAdapterKnows) {
    hurry();
    EXPECT_EQ(play({line("t0D40\r", "z\r"), line("F\r", "FA4\r")}, [&] { return reset(); }), 5);
    EXPECT_TRUE(traced("# no answer in time\n# adapter: F FA4\n# the adapter says: error warning\n"
                       "# the adapter says: error passive\n# the adapter says: bus error\n"));
    EXPECT_EQ(play({inStep, line("t0D40\r", "z\r"), line("F\r", "F5B\r")}, [&] { return reset(); }), 5);
    EXPECT_TRUE(
        traced("F5B\n# the adapter says: its receive queue is full\n# the adapter says: its transmit queue is full\n"
               "# the adapter says: it lost frames\n# the adapter says: arbitration lost\n"));
}

// Not more frames at a time than the smallest line buffer holds.
TEST_F(CanAdapterTest, ThreeFramesWaitForTheirAcknowledge) {
    BYTE data[32] = {};
    EXPECT_EQ(play({line("t0310\r", "z\rt131179\r"), line("t03152000000020\r", "z\rt131179\r"),
                    line("t03181F00000000000000\r" + full + full, "z\r"), line(full, "z\r"),
                    line("t03120"
                         "01F\r",
                         "z\rz\r"),
                    line("", "z\rt131179\r")},
                   [&] { return ZVBL_DNLOAD(link, 0x20000000, data, 32, 0); }),
              0);
}

TEST_F(CanAdapterTest, AFrameOfAnotherNodeIsNoAcknowledge) {
    BYTE data[32] = {};
    std::thread adapter([&] {
        ScriptedChip first(pty, {line("t0310\r", "z\rt131179\r"), line("t03152000000020\r", "z\rt131179\r"),
                                 line("t03181F00000000000000\r" + full + full, "t1230\r")});
        EXPECT_EQ(first.finish(), "");
        ScriptedChip rest(pty, {line("", "z\r"), line(full, "z\rz\r"), line("t0312001F\r", "z\rz\rt131179\r")});
        EXPECT_EQ(rest.finish(), "");
    });
    EXPECT_EQ(ZVBL_DNLOAD(link, 0x20000000, data, 32, 0), 0);
    adapter.join();
}

// A full queue: the frame that nothing has followed is sent again in its place.
TEST_F(CanAdapterTest, ARefusedFrameIsSentAgain) {
    const Turn refused = line("t0D40\r", "\a");
    EXPECT_EQ(play({refused, refused, line("t0D40\r", "z\rt1D4179\r")}, [&] { return reset(); }), 0);
}

TEST_F(CanAdapterTest, AFrameThatIsRefusedForEverIs5InTime) {
    hurry();
    std::atomic<bool> ended{false};
    std::thread refusing([&] {
        while (!ended)
            if (!pty.read(5).empty())
                pty.write(bytesOf("\a"));
    });
    const auto from = steady_clock::now();
    EXPECT_EQ(reset(), 5);
    EXPECT_LT(steady_clock::now() - from, milliseconds(2000));
    ended = true;
    refusing.join();
    while (!pty.read(20).empty()) {
    }
}

// After a frame that was refused within others the chip has a group with a gap. Then it is one at a time.
TEST_F(CanAdapterTest, AFrameRefusedWithinOthersEndsTheCommand) {
    BYTE data[12] = {};
    const Turn opcode = line("t0310\r", "z\rt131179\r"), address = line("t03152000000020\r", "z\rt131179\r");
    const Script readBack = {line("t0110\r", "z\rt111179\r"), line("t01152000000020\r", "z\rt111179\r"),
                             line("t01120BF4\r", "z\rt111179\rt1118FFFFFFFFFFFFFFFF\rt1115FFFFFFFF00\r")};
    const Script script =
        Script{opcode, address, line("t03180B00000000000000\rt031600000000000B\r", "\az\r")} + bringUp +
        Script{inStep} + readBack +
        Script{opcode, address, line("t03180B00000000000000\r", "z\r"), line("t031600000000000B\r", "z\rt131179\r")};
    EXPECT_EQ(play(script, [&] { return ZVBL_DNLOAD(link, 0x20000000, data, 12, 0); }), 0);
    EXPECT_TRUE(traced("# the adapter refused a frame within others"));
}

TEST_F(CanAdapterTest, ALostAcknowledgeIsFoundOut) {
    EXPECT_EQ(play({line("t0D40\r", "t1D4179\r")}, [&] { return reset(); }), 0);
    std::this_thread::sleep_for(milliseconds(510));
    EXPECT_EQ(
        play({bringUp[0], bringUp[1], bringUp[2], line("t07F0\r", "z\rt17F11F\r"), line("t0D40\r", "z\rt1D4179\r")},
             [&] {
                 EXPECT_EQ(reset(), 5); // the count of what is under way was wrong
                 return reset();
             }),
        0);
}

TEST_F(CanAdapterTest, SpeedsAreCodesOfTheAdapter) {
    const struct {
        unsigned long speed;
        const char *group;
        const char *code;
    } speeds[] = {
        {1, "t003201FE\r", "S4\r"},      {3, "t003203FC\r", "S6\r"}, {1000000, "t003204FB\r", "S8\r"},
        {5, "t003205FA\r", "S3\r"},      {6, "t003206F9\r", "S2\r"}, {20000, "t003207F8\r", "S1\r"},
        {800000, "t003208F7\r", "S7\r"},
    };
    const Turn opcode = line("t0030\r", "z\rt103179\r");
    for (const auto &speed : speeds) {
        SCOPED_TRACE(speed.speed);
        EXPECT_EQ(play({opcode, line(speed.group, "z\rt103179\r"), line("\r\r\rC\r", "\r"), line(speed.code, "\r"),
                        line("O\r", "\r"), inStep},
                       [&] { return ZVBL_SetSpeed(link, speed.speed); }),
                  0);
        EXPECT_EQ(play(Script{opcode, line("t003202FD\r", "z\rt103179\r")} + closing + opening,
                       [&] { return Interface_Open(link); }),
                  0);
    }
    EXPECT_EQ(play({}, [&] { return ZVBL_SetSpeed(link, 2); }), 0);
    EXPECT_EQ(play({}, [&] { return ZVBL_SetSpeed(link, 0); }), 0);
    EXPECT_EQ(play({}, [&] { return ZVBL_SetSpeed(link, 10000); }), 0x21);
}

TEST_F(CanAdapterTest, AnAdapterThatRefusesASpeedIs4) {
    const Turn opcode = line("t0030\r", "z\rt103179\r");
    EXPECT_EQ(play({opcode, line("t003208F7\r", "z\rt103179\r"), line("\r\r\rC\r", "\r"), line("S7\r", "\a")},
                   [&] { return ZVBL_SetSpeed(link, 800000); }),
              4);
    EXPECT_TRUE(traced("# the adapter refuses S7"));
}

TEST_F(CanAdapterTest, UnpluggedIs4UntilTheLinkIsClosed) {
    ASSERT_EQ(SetTimeOut(link, 10000), 0);
    const auto from = steady_clock::now();
    std::thread hand([&] {
        std::this_thread::sleep_for(milliseconds(30));
        pty.unplug();
    });
    BYTE data[4];
    EXPECT_EQ(ZVBL_UPLOAD(link, 0x20000000, data, 4), 4);
    hand.join();
    EXPECT_EQ(reset(), 4);
    EXPECT_EQ(ZVBL_Init_BL(link, 0, 2, 0), 4);
    EXPECT_EQ(ZVBL_SetSpeed(link, 500000), 4);
    EXPECT_LT(steady_clock::now() - from, milliseconds(2000));
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_Open(link), 3);
    atTheEnd = {};
}

TEST_F(CanAdapterTest, WhatIsNoAdapterIs3InTime) {
    ASSERT_EQ(play(closing, [&] { return Interface_Close(link); }), 0);
    const auto from = steady_clock::now();
    EXPECT_EQ(play({line("\r\r\rC\r", ""), line("S5\r", "")}, [&] { return Interface_Open(link); }), 3); // silent
    EXPECT_EQ(play({line("\r\r\rC\r", ""), line("S5\r", "\a")}, [&] { return Interface_Open(link); }), 3);
    EXPECT_EQ(
        play({line("\r\r\rC\r", ""), line("S5\r", "\r"), line("O\r", "\a")}, [&] { return Interface_Open(link); }), 3);
    EXPECT_LT(steady_clock::now() - from, milliseconds(3000));
    EXPECT_TRUE(traced("# cannot open: no CAN adapter answers"));
    atTheEnd = {};
}

TEST_F(CanAdapterTest, AnAdapterIsOurs) {
    HANDLE other = nullptr;
    ASSERT_EQ(SetCOMSettings(&other, 0, pty.path().c_str(), 115200, 8, 2, 1.0F), 0);
    EXPECT_EQ(Interface_Open(other), 3);
    EXPECT_EQ(ZVBL_SetDtr(link, 1), 4);
    EXPECT_EQ(resetWorks(), 0);
}

// "pts/3" is /dev/pts/3 where no network interface has that name.
TEST_F(CanAdapterTest, ANameWithoutASlashInFrontIsOneOfDevToo) {
    ASSERT_EQ(play(closing, [&] { return Interface_Close(link); }), 0);
    ASSERT_EQ(SetCOMSettings(&link, 0, pty.path().substr(5).c_str(), 115200, 8, 2, 1.0F), 0);
    EXPECT_EQ(play(opening, [&] { return Interface_Open(link); }), 0);
}

TEST_F(CanAdapterTest, TheTraceTellsOfFramesAndCommands) {
    EXPECT_EQ(resetWorks(), 0);
    EXPECT_EQ(trace(),
              "# open 1000000 8N1\n# adapter: S5 yes\n# adapter: O yes\n# adapter: V V1013\n> 0D4\n< 1D4 79\n");
}

// Whoever reads the trace is told nothing by it but what it says.
TEST_F(CanAdapterTest, WhatIsNotPrintableIsWrittenAsANumber) {
    hurry();
    EXPECT_EQ(play({line("t0D40\r", "z\rt1\x1B[2JD\r"), line("F\r", "F0\n\x9B"
                                                                    "31m > 31 CE\r")},
                   [&] { return reset(); }),
              5);
    EXPECT_TRUE(traced("x not a frame: t1\\x1B[2JD\n"));
    EXPECT_TRUE(traced("# adapter: F F0\\x0A\\x9B31m > 31 CE\n"));
}

// One that never stops talking: no call waits longer than it may.
TEST_F(CanAdapterTest, BabbleEndsNoCallLate) {
    hurry();
    for (const char *babble : {"U", "\r", "t1550\r", "tU\r"}) {
        SCOPED_TRACE(babble);
        std::string text;
        for (int i = 0; i < 100; ++i)
            text += babble;
        const auto from = steady_clock::now();
        {
            const Babbler babbler(pty, bytesOf(text), Babbler::Begin::whenSpokenTo, bytesOf("z\rt144179\r"));
            EXPECT_EQ(ZVBL_ERASE(link, 0xFFFE, nullptr, 0), 5);
            EXPECT_EQ(Interface_Close(link), 0);
        }
        EXPECT_LT(steady_clock::now() - from, milliseconds(4000));
        ASSERT_EQ(play(opening, [&] { return Interface_Open(link); }), 0);
    }
    EXPECT_LT(std::filesystem::file_size(directory / "trace"), 500000U);
}

} // namespace
