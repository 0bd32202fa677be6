// The modem control lines of the emulated serial port, and what else its driver keeps.

#include "sim/ports/nodes/TtyNode.h"

#include <gtest/gtest.h>
#include <linux/serial.h>
#include <termios.h>

#include "tests/sim/NodeRig.h"

namespace sim {
namespace {

// Works until it is so, or for long enough.
template <class Condition>
bool workUntil(NodeRig &board, Condition holds) {
    constexpr int mostTurns = 2000;
    for (int turn = 0; turn < mostTurns && !holds(); ++turn) {
        board.work();
        waitUntil(clockNow() + millisecond);
    }
    return holds();
}

int linesOf(const OpenFile &tty) {
    int lines = 0;
    EXPECT_EQ(tty.call(TIOCMGET, &lines), 0);
    return lines;
}

TEST(TtyNodeTest, LinesAreSetRaisedAndLowered) {
    NodeRig board(makeTtyNode, "ttyUSB0");
    const OpenFile tty("/dev/ttyUSB0");
    int lines = TIOCM_RTS;
    EXPECT_EQ(linesOf(tty), TIOCM_DTR | TIOCM_RTS);
    EXPECT_EQ(tty.call(TIOCMSET, &lines), 0);
    EXPECT_EQ(linesOf(tty), TIOCM_RTS);
    lines = TIOCM_DTR;
    EXPECT_EQ(tty.call(TIOCMBIS, &lines), 0);
    EXPECT_EQ(linesOf(tty), TIOCM_DTR | TIOCM_RTS);
    EXPECT_EQ(tty.call(TIOCMBIC, &lines), 0);
    EXPECT_EQ(linesOf(tty), TIOCM_RTS);
    for (const unsigned long request : {TIOCMGET, TIOCMSET, TIOCMBIS, TIOCMBIC, TIOCGSERIAL, TIOCSSERIAL})
        EXPECT_EQ(tty.call(request, nullptr), EFAULT) << request;
}

TEST(TtyNodeTest, SettingsOfTheDriverStay) {
    NodeRig board(makeTtyNode, "ttyUSB0");
    const OpenFile tty("/dev/ttyUSB0");
    serial_struct settings{};
    settings.flags = ASYNC_LOW_LATENCY;
    EXPECT_EQ(tty.call(TIOCSSERIAL, &settings), 0);
    settings = {};
    EXPECT_EQ(tty.call(TIOCGSERIAL, &settings), 0);
    EXPECT_EQ(settings.flags, ASYNC_LOW_LATENCY);
}

TEST(TtyNodeTest, AfterTheLastTheLinesFallUnlessTheyAreHeld) {
    NodeRig board(makeTtyNode, "ttyUSB0");
    for (const bool held : {true, false}) {
        OpenFile tty("/dev/ttyUSB0");
        termios line{};
        ASSERT_EQ(tcgetattr(tty.fd(), &line), 0);
        EXPECT_NE(line.c_cflag & HUPCL, 0U);
        if (held)
            line.c_cflag &= ~tcflag_t{HUPCL};
        ASSERT_EQ(tcsetattr(tty.fd(), TCSANOW, &line), 0);
        tty.leave();
        board.work();
        const bool fell = board.rig.told.str().find("lines: DTR low, RTS low") != std::string::npos;
        EXPECT_EQ(fell, !held);
    }
}

TEST(TtyNodeTest, AnAnswerThatUnplugsIt) {
    NodeRig board(makeTtyNode, "ttyUSB0", {"tx-hangup@1"});
    const OpenFile tty("/dev/ttyUSB0");
    ASSERT_EQ(write(tty.fd(), "\x7F", 1), 1);
    EXPECT_TRUE(workUntil(board, [&] { return board.hungUp(); }));
    EXPECT_EQ(tty.call(TIOCMGET, nullptr), ENODEV);
}

} // namespace
} // namespace sim
