// Commands on a CAN bus that the test plays: answers that hardly any bus gives, and rates that cannot be set.

#include "libs/zvbl/framing/CanFraming.h"

#include <deque>

#include <gtest/gtest.h>

namespace zvbl {
namespace {

struct Heard {
    Status status;
    CanFrame frame{};
};
using Reaction = std::vector<Heard>; // to one frame of the host

class PlayedBus : public CanBus {
public:
    Status open(const LinkSettings &) override { return Status::ok; }
    Status reconfigure(const LinkSettings &) override { return Status::ok; }
    Status setLine(ControlLine, bool) override { return Status::gone; }

    Status send(const CanFrame &, TimePoint) override {
        if (!reactions.empty()) {
            m_heard.insert(m_heard.end(), reactions.front().begin(), reactions.front().end());
            reactions.pop_front();
        }
        return Status::ok;
    }
    Status receive(CanFrame &frame, TimePoint) override {
        if (m_heard.empty()) {
            frame = {0x700, 0, {}};
            return babbles ? Status::ok : Status::noAnswer;
        }
        const Heard next = m_heard.front();
        m_heard.pop_front();
        frame = next.frame;
        return next.status;
    }
    unsigned bitRate() const override { return rate; }
    Status mayChangeBitRate() override { return Status::ok; }
    Status setBitRate(unsigned bitsPerSecond) override {
        const Status status = rates.empty() ? Status::ok : rates.front();
        if (!rates.empty())
            rates.pop_front();
        rate = status == Status::ok ? bitsPerSecond : rate;
        return status;
    }
    Duration frameTime(std::size_t) const override { return Duration{0}; }

    std::deque<Reaction> reactions; // to the next frames; none to all others
    bool babbles = false;           // frames of somebody else come without an end
    unsigned rate = 125000;
    std::deque<Status> rates; // what setting one gives

private:
    std::deque<Heard> m_heard;
};

Heard byteFrom(std::uint8_t opcode, std::uint8_t byte) {
    return {Status::ok, {static_cast<std::uint16_t>(opcode + wire::canFromChip), 1, {byte}}};
}

class CanFramingTest : public ::testing::Test {
protected:
    static Timing shortTiming() {
        Timing timing;
        timing.quiet = std::chrono::milliseconds(1);
        return timing;
    }
    Status get(Duration timeout) {
        Bytes reply;
        Command command{wire::opGet};
        command.reply = {true, 0, Reply::End::ack};
        return framing.transfer(command, reply, timeout);
    }

    static constexpr unsigned fast = 500000;
    static constexpr auto moment = std::chrono::milliseconds(50);
    const Heard opened = byteFrom(wire::sync, wire::ack);
    const Timing timing = shortTiming();
    Trace trace{"can0", "CAN"};
    PlayedBus bus;
    CanFraming framing{bus, timing, trace};
};

TEST_F(CanFramingTest, AReplyWithoutItsCount) {
    const Heard empty{Status::ok, {wire::opGet + wire::canFromChip, 0, {}}};
    bus.reactions = {{byteFrom(wire::opGet, wire::ack), empty}};
    EXPECT_EQ(get(moment), Status::noAnswer);
}

TEST_F(CanFramingTest, ABusThatIsNeverSilentIsNotWaitedFor) {
    bus.babbles = true;
    EXPECT_EQ(get(Duration{0}), Status::noAnswer);
    EXPECT_EQ(get(Duration{0}), Status::outOfStep);
}

TEST_F(CanFramingTest, ABusThatLeavesBehindAWrongAnswer) {
    bus.reactions = {{byteFrom(wire::sync, 0x55), {Status::gone}}};
    EXPECT_EQ(framing.start({}, moment), Status::gone);
}

TEST_F(CanFramingTest, ARateThatCannotBeSetBackIsTold) {
    bus.rates = {Status::ok, Status::gone};
    EXPECT_EQ(framing.start({0, fast}, moment), Status::gone);
    EXPECT_EQ(bus.rate, fast);
}

TEST_F(CanFramingTest, ASpeedThatIsNeverAcknowledged) {
    bus.reactions = {{}, {opened}, {}, {opened}, {}, {opened}};
    EXPECT_EQ(framing.setSpeed(fast, moment), Status::ok); // it is there at the new one
    EXPECT_EQ(bus.rate, fast);
    EXPECT_TRUE(bus.reactions.empty());
}

TEST_F(CanFramingTest, ASpeedThatNobodyHears) {
    EXPECT_EQ(get(moment), Status::noAnswer);
    EXPECT_EQ(framing.setSpeed(fast, moment), Status::outOfStep);
    EXPECT_EQ(bus.rate, 125000U);
}

TEST_F(CanFramingTest, ABusThatStaysAtTheSpeedThatFailed) {
    bus.rates = {Status::ok, Status::gone};
    EXPECT_EQ(framing.setSpeed(fast, moment), Status::outOfStep);
    EXPECT_EQ(bus.rate, fast);
}

} // namespace
} // namespace zvbl
