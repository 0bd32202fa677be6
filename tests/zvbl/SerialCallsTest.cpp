// A serial port whose calls fail, and what a line that never falls silent does to its commands.

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

#include "libs/zvbl/framing/UsartFraming.h"
#include "tests/zvbl/FakeKernel.h"

namespace zvbl {
namespace {

class SerialCallsTest : public SystemCallsTest {
protected:
    void SetUp() override {
        ASSERT_GE(master, 0);
        ASSERT_EQ(grantpt(master) | unlockpt(master), 0);
        settings.portName = ptsname(master);
        SystemCallsTest::SetUp();
        ASSERT_EQ(port.open(settings), Status::ok);
    }
    void TearDown() override {
        SystemCallsTest::TearDown();
        close(master);
    }
    static Timing shortTiming() {
        Timing timing;
        timing.quiet = std::chrono::milliseconds(2);
        timing.frameLimit = std::chrono::milliseconds(20);
        return timing;
    }
    Status reset() {
        Bytes reply;
        return framing.transfer({wire::opReset}, reply, std::chrono::milliseconds(5));
    }
    // The chip refuses a command.
    void refuse() {
        fake.answers = {{static_cast<char>(wire::nack)}};
        ASSERT_EQ(reset(), Status::refusedCommand);
    }

    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    const Timing timing = shortTiming();
    SerialPort port{trace};
    UsartFraming framing{port, timing, trace};
};

TEST_F(SerialCallsTest, WhatCannotBeSentInTimeIsTold) {
    fail("write", EAGAIN);
    EXPECT_EQ(port.send({1}, soon()), Status::gone);
    fail("write", EAGAIN);
    fail("ppoll", EIO);
    EXPECT_EQ(port.send({1}, soon()), Status::gone);
    EXPECT_TRUE(fake.failing.empty());
}

TEST_F(SerialCallsTest, ALineThatIsNeverSilentAfterARefusal) {
    refuse();
    fake.babbles = true;
    EXPECT_EQ(reset(), Status::outOfStep);
    EXPECT_EQ(framing.start({}, std::chrono::milliseconds(5)), Status::noAnswer);
}

// The chip may hold half a command for longer than the caller waits: something is there, then, and nothing was heard.
TEST_F(SerialCallsTest, AStartThatIsOverBeforeTheChipHasDroppedWhatItHolds) {
    Timing patient;
    patient.frameLimit = std::chrono::seconds(10);
    UsartFraming slow{port, patient, trace};
    Bytes reply;
    EXPECT_EQ(slow.transfer({wire::opReset}, reply, std::chrono::milliseconds(5)), Status::noAnswer);
    EXPECT_EQ(slow.start({}, std::chrono::milliseconds(50)), Status::noAnswer);
}

TEST_F(SerialCallsTest, APortThatIsGoneAfterARefusal) {
    refuse();
    fail("read", EIO);
    EXPECT_EQ(reset(), Status::gone);
}

} // namespace
} // namespace zvbl
