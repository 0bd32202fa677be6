// How a serial-line CAN adapter is kept from holding more frames than it has room for, on a bus slower than its line.

#include <atomic>
#include <cstdlib>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "libs/zvbl/transport/CanAdapter.h"
#include "tests/zvbl/Babbler.h"
#include "tests/zvbl/ScriptedChip.h"

namespace zvbl {
namespace {

constexpr unsigned slow = 10000; // bits per second
constexpr int held = 8;          // frames that are on their way at most

// An adapter that takes every frame at once.
class Acknowledger {
public:
    explicit Acknowledger(Pty &pty) : m_thread([this, &pty] { serve(pty); }) {}
    ~Acknowledger() {
        m_stop = true;
        m_thread.join();
    }

private:
    void serve(Pty &pty) {
        constexpr int patienceMs = 5;
        for (bool last = false, empty = false; !last || !empty;) {
            last = m_stop; // what was sent before that is taken
            const Bytes bytes = pty.read(patienceMs);
            empty = bytes.empty();
            for (const std::uint8_t byte : bytes)
                if (byte == '\r')
                    pty.write({'z', '\r'});
        }
    }

    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

class CanAdapterBusTest : public ::testing::Test {
protected:
    static Turn line(const std::string &host, const std::string &adapter) {
        return {Bytes(host.begin(), host.end()), hex(Bytes(adapter.begin(), adapter.end()))};
    }
    static Script opening(const std::string &rate) {
        return {line("\r\r\rC\r", "\a\a\a\r"), line(rate + "\r", "\r"), line("O\r", "\r")};
    }
    static TimePoint in(int milliseconds) { return Clock::now() + std::chrono::milliseconds(milliseconds); }

    void SetUp() override {
        Script script = opening("S5");
        script.push_back(line("V\r", "V1013\r"));
        play(script, [&] { EXPECT_EQ(adapter->open(settings), Status::ok); });
        play(opening("S0"), [&] { EXPECT_EQ(adapter->setBitRate(slow), Status::ok); });
    }
    void TearDown() override {
        unsetenv("ZVBL_TRACE");
        if (!gone)
            play({line("C\r", "\r")}, [&] { adapter.reset(); });
    }
    template <class Act>
    void play(const Script &script, Act act) {
        ScriptedChip other(pty, script);
        act();
        EXPECT_EQ(other.finish(), "");
    }

    Status send(TimePoint deadline) { return adapter->send({0x100, 8, {1, 2, 3, 4, 5, 6, 7, 8}}, deadline); }
    const bool traced = setenv("ZVBL_TRACE", "/dev/null", 1) == 0;
    const std::string sent = "t10080102030405060708\r";
    bool gone = false;
    Pty pty;
    Trace trace{"can", "CAN"};
    const LinkSettings settings{0, pty.path(), 1000000};
    std::unique_ptr<CanAdapter> adapter = std::make_unique<CanAdapter>(trace);
};

TEST_F(CanAdapterBusTest, WhatIsMoreWaitsForTheBusAndNotLongerThanItWants) {
    constexpr int frames = held + 4;
    const Acknowledger other(pty);
    const TimePoint begin = Clock::now();
    for (int i = 0; i < frames; ++i)
        EXPECT_EQ(send(in(5000)), Status::ok);
    EXPECT_GE(Clock::now() - begin, (frames - 1 - held) * static_cast<CanBus &>(*adapter).CanBus::frameTime(8));
    Status status = Status::ok;
    for (int i = 0; i < 1000 && status == Status::ok; ++i) // a machine that is held up lets some through
        status = send(Clock::now());
    EXPECT_EQ(status, Status::noAnswer);
}

TEST_F(CanAdapterBusTest, AnAdapterThatLeavesMeanwhileIsGone) {
    {
        const Acknowledger other(pty);
        for (int i = 0; i < held + 2; ++i)
            EXPECT_EQ(send(in(5000)), Status::ok);
    }
    gone = true;
    std::thread hand([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(3)); // while the next frame waits for the bus
        pty.unplug();
    });
    Status status = Status::ok;
    for (int i = 0; i < 3 && status == Status::ok; ++i)
        status = send(in(5000));
    hand.join();
    EXPECT_EQ(status, Status::gone);
    adapter.reset();
}

TEST_F(CanAdapterBusTest, OneThatIsGoneExplainsNothing) {
    gone = true;
    pty.unplug();
    adapter->explain();
    EXPECT_EQ(send(in(5000)), Status::gone);
    adapter.reset();
}

// A frame that others have followed cannot be sent once more in its place.
TEST_F(CanAdapterBusTest, AFrameThatIsRefusedWithinOthers) {
    for (int i = 0; i < 3; ++i)
        play({line(sent, "")}, [&] { EXPECT_EQ(send(in(5000)), Status::ok); });
    pty.write({'\a'});
    EXPECT_EQ(send(in(5000)), Status::noAnswer);
}

TEST_F(CanAdapterBusTest, OneThatIsRefusedWhileTheNextWaitsForTheBus) {
    {
        const Acknowledger other(pty);
        for (int i = 0; i < held + 2; ++i)
            EXPECT_EQ(send(in(5000)), Status::ok);
    }
    gone = true; // what it has said is not looked at
    EXPECT_EQ(send(in(5000)), Status::ok);
    EXPECT_EQ(send(in(5000)), Status::ok);
    std::thread hand([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
        pty.write({'\a'});
    });
    Status status = Status::ok;
    for (int i = 0; i < 100 && status == Status::ok; ++i) // a machine that is held up lets some through
        status = send(in(5000));
    hand.join();
    EXPECT_EQ(status, Status::noAnswer);
    adapter.reset();
}

TEST_F(CanAdapterBusTest, OneThatIsNeverSilentIsNotWaitedFor) {
    for (int i = 0; i < 3; ++i)
        play({line(sent, "")}, [&] { EXPECT_EQ(send(in(5000)), Status::ok); });
    EXPECT_EQ(send(Clock::now()), Status::noAnswer);
    gone = true;
    const Babbler babbler(pty, Bytes(100, 'x'));
    EXPECT_EQ(send(in(30)), Status::noAnswer);
    adapter.reset();
}

TEST_F(CanAdapterBusTest, OneThatAcknowledgesNothingIsNotGivenMore) {
    for (int i = 0; i < 3; ++i)
        play({line(sent, "")}, [&] { EXPECT_EQ(send(in(5000)), Status::ok); });
    EXPECT_EQ(send(in(20)), Status::noAnswer);
    Script script = opening("S0"); // nobody knows how many it has: from the beginning
    script.push_back(line(sent, "z\r"));
    play(script, [&] { EXPECT_EQ(send(in(5000)), Status::ok); });
    for (int i = 0; i < 3; ++i)
        play({line(sent, "")}, [&] { EXPECT_EQ(send(in(5000)), Status::ok); });
    EXPECT_EQ(send(Clock::now()), Status::noAnswer);
}

} // namespace
} // namespace zvbl
