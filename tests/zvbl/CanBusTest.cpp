// The bus and its interface: absent, down, unplugged, bus-off, a full queue, and what errors are only told.

#include <thread>

#include "tests/zvbl/CanFixture.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class CanBusTest : public CanFixture {
protected:
    int reset() { return ZVBL_ResetMCU(link); }
    int upload() {
        BYTE bytes[16];
        return ZVBL_UPLOAD(link, 0x20000000, bytes, sizeof bytes);
    }
    int resetWorks() {
        return play({{"0D4", "1D4 79"}}, [&] { return reset(); });
    }
    // A call that ends at once and not with a time limit.
    template <class Call>
    int atOnce(Call call) {
        EXPECT_EQ(SetTimeOut(link, 10000), 0);
        const auto from = steady_clock::now();
        const int status = call();
        EXPECT_LT(steady_clock::now() - from, milliseconds(2000));
        return status;
    }
};

int openPort(const char *name) {
    HANDLE other = nullptr;
    EXPECT_EQ(SetCOMSettings(&other, 0, name, 115200, 8, 2, 1.0F), 0);
    return Interface_Open(other);
}

TEST_F(CanBusTest, WhatCannotBeOpenedIs3AndTheTraceSaysWhy) {
    EXPECT_EQ(openPort(""), 3);
    EXPECT_EQ(openPort("can7"), 3);
    EXPECT_TRUE(traced("# cannot open: No such device"));
    bus->tell("down");
    EXPECT_EQ(Interface_Open(link), 3);
    EXPECT_TRUE(traced("# cannot open: Network is down"));
    EXPECT_EQ(Interface_is_Open(link), 0);
    EXPECT_EQ(reset(), 1);
    bus->tell("up");
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(resetWorks(), 0);
}

// Several programs may use an interface.
TEST_F(CanBusTest, AnInterfaceIsNotTakenFromOthers) {
    EXPECT_EQ(openPort("can0"), 0);
    EXPECT_EQ(resetWorks(), 0);
}

TEST_F(CanBusTest, SettingsOfASerialLineMeanNothingButARateThereIs) {
    EXPECT_EQ(SetCOMSettings(&link, 0, "can0", 9600, 5, 7, 3.0F), 0);
    EXPECT_EQ(SetCOMSettings(&link, 0, "can0", 0, 8, 2, 1.0F), 0x21);
}

TEST_F(CanBusTest, ABusHasNoControlLines) {
    EXPECT_EQ(ZVBL_SetDtr(link, 1), 4);
    EXPECT_EQ(ZVBL_SetRts(link, 0), 4);
    EXPECT_EQ(resetWorks(), 0);
}

TEST_F(CanBusTest, TakenDownWithinACommandIs4UntilTheLinkIsClosed) {
    const auto down = [&] { bus->tell("down"); };
    const CanScript script = {{"011", "111 79"}, {"011 20 00 00 00 20", "", down}};
    EXPECT_EQ(atOnce([&] { return play(script, [&] { return upload(); }); }), 4);
    EXPECT_TRUE(traced("# the bus is gone: Network is down"));
    EXPECT_EQ(atOnce([&] { return reset(); }), 4);
    EXPECT_EQ(ZVBL_Init_BL(link, 0, 2, 0), 4);
    bus->tell("up");
    EXPECT_EQ(reset(), 4); // what has happened meanwhile nobody knows
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(resetWorks(), 0);
}

TEST_F(CanBusTest, UnpluggedWithinACommandIs4UntilTheLinkIsClosed) {
    const auto unplug = [&] { bus->tell("unplug"); };
    EXPECT_EQ(atOnce([&] { return play({{"011", "", unplug}}, [&] { return upload(); }); }), 4);
    EXPECT_EQ(atOnce([&] { return upload(); }), 4);
    EXPECT_EQ(Interface_Open(link), 3);
    bus->tell("plug");
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(resetWorks(), 0);
}

// Between two commands nothing tells but the send.
TEST_F(CanBusTest, UnpluggedOrDownBetweenCommandsIs4) {
    for (const char *how : {"unplug", "down"}) {
        SCOPED_TRACE(how);
        bus->tell(how);
        EXPECT_EQ(atOnce([&] { return reset(); }), 4);
        EXPECT_EQ(atOnce([&] { return reset(); }), 4);
        bus->tell(std::string(how) == "down" ? "up" : "plug");
        EXPECT_EQ(Interface_Open(link), 0);
    }
    EXPECT_EQ(resetWorks(), 0);
}

TEST_F(CanBusTest, AnUnpluggedBusEndsAWaitInGettingInStep) {
    hurry();
    EXPECT_EQ(play({{"0D4", ""}}, [&] { return reset(); }), 5);
    std::thread hand([&] {
        std::this_thread::sleep_for(milliseconds(30));
        bus->tell("unplug");
    });
    EXPECT_EQ(atOnce([&] { return reset(); }), 4);
    hand.join();
}

TEST_F(CanBusTest, BusOffEndsTheLink) {
    const auto off = [&] { bus->tell("bus-off"); };
    EXPECT_EQ(atOnce([&] { return play({{"011", "", off}}, [&] { return upload(); }); }), 4);
    EXPECT_TRUE(traced("# bus-off"));
    bus->tell("restart");
    EXPECT_EQ(reset(), 4);
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(resetWorks(), 0);
}

TEST_F(CanBusTest, WhatTheControllerCopesWithIsOnlyTold) {
    const auto inject = [&](const char *frame) { return [this, frame] { bus->tell(std::string("frame ") + frame); }; };
    const struct {
        const char *frame;
        const char *remark;
    } errors[] = {
        {"20000004#0008000000000000", "# error warning"},
        {"20000004#0020000000000000", "# error passive"},
        {"20000004#0040000000000000", "# error active again"},
        {"20000004#0001000000000000", "# the controller lost frames"},
        {"20000002#0300000000000000", "# arbitration lost"},
        {"20000020#0000000000000000", "# nobody acknowledges"},
        {"20000100#0000000000000000", "# the controller was restarted"},
    };
    for (const auto &error : errors) {
        SCOPED_TRACE(error.remark);
        CanChip *chip = nullptr;
        const auto answer = [&] {
            inject(error.frame)();
            chip->send("1D4 79");
        };
        CanChip playing(CanScript{{"0D4", "", answer}});
        chip = &playing;
        EXPECT_EQ(reset(), 0);
        EXPECT_EQ(playing.finish(), "");
        EXPECT_TRUE(traced(error.remark));
    }
}

TEST_F(CanBusTest, AFullQueueIsWaitedFor) {
    bus->tell("busy 20");
    EXPECT_EQ(resetWorks(), 0);
}

TEST_F(CanBusTest, AQueueThatStaysFullIsNoAnswer) {
    hurry();
    bus->tell("busy -1");
    EXPECT_EQ(reset(), 5);
    EXPECT_TRUE(traced("# cannot send in time"));
    EXPECT_EQ(ZVBL_Init_BL(link, 0, 2, 0), 0x11);
    bus->tell("busy 0");
    EXPECT_EQ(play({{"07F", "17F 1F"}, {"0D4", "1D4 79"}}, [&] { return reset(); }), 0);
}

// At a rate of its own the interface queues ten frames. A packet of thirty-three overruns nothing.
TEST_F(CanBusTest, APacketIsLongerThanTheQueue) {
    openOn(1000000);
    std::string packet = "031 FF 00 00 00 00 00 00 00";
    for (int i = 1; i < 32; ++i)
        packet += ",031 00 00 00 00 00 00 00 00";
    packet += ",031 00 FF";
    BYTE data[256] = {};
    EXPECT_EQ(play({{"031", "131 79"}, {"031 20 00 00 00 20", "131 79"}, {packet, "131 79"}},
                   [&] { return ZVBL_DNLOAD(link, 0x20000000, data, 256, 0); }),
              0);
}

TEST_F(CanBusTest, TheTraceTellsOfEachFrame) {
    hurry();
    BYTE length = 0;
    EXPECT_EQ(play({{"002", "102 79, 102 01 02 42 41, 102 79"}}, [&] { return ZVBL_GET_ID(link, &length, nullptr); }),
              0);
    EXPECT_EQ(play({{"0D4", ""}}, [&] { return reset(); }), 5);
    EXPECT_EQ(play({{"07F", "1D4 79, 17F 79"}, {"0D4", "1D4 1F"}}, [&] { return reset(); }), 0x13);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(trace(), "# open, a bus without a bit rate\n> 002\n< 102 79\n< 102 01 02 42 41\n< 102 79\n"
                       "> 0D4\n# no answer in time\n"
                       "# getting in step\n> 07F\nx 1D4 79\n< 17F 79\n> 0D4\n< 1D4 1F\n# closed\n");
}

} // namespace
