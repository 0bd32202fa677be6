// The loop that serves a port: signals, unplugging and plugging in again, the pause in which the state is saved.

#include "sim/program/PortLoop.h"

#include <csignal>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "sim/ports/Clock.h"

namespace sim {
namespace {

// Writes down what is done with it.
class FakePort : public Port {
public:
    bool plugIn(std::string &error) override {
        told += "plug ";
        error = "there is no place";
        return possible;
    }
    void unplug() override { told += "unplug "; }
    std::string takeReady() override { return {}; }
    void reset(Nanoseconds) override { told += "reset "; }
    void losePower(Nanoseconds) override {
        told += "power ";
        m_hangup.reset();
        dueAt = 0;
    }
    bool work(Nanoseconds now, std::string &error) override {
        told += "work ";
        if (dueAt && *dueAt <= now)
            dueAt.reset();
        if (!hangups.empty()) {
            m_hangup = hangups.back();
            hangups.pop_back();
        }
        error = "it broke";
        return !broken;
    }
    std::vector<int> fds() const override { return {-1}; }
    std::optional<Nanoseconds> due(Nanoseconds) override { return dueAt; }
    std::optional<Hangup> hangup() const override { return m_hangup; }
    void drain() override { told += "drain "; }

    std::string told;
    bool possible = true;
    bool broken = false;
    std::vector<Hangup> hangups; // the last one first
    std::optional<Nanoseconds> dueAt;

private:
    std::optional<Hangup> m_hangup;
};

class PortLoopTest : public ::testing::Test {
protected:
    PortLoopTest() { EXPECT_EQ(pipe2(pipe, O_NONBLOCK | O_CLOEXEC), 0); }
    ~PortLoopTest() override {
        close(pipe[0]);
        close(pipe[1]);
    }

    // As a signalfd tells it.
    void signal(int number) const {
        struct signalfd_siginfo info {};
        info.ssi_signo = static_cast<std::uint32_t>(number);
        EXPECT_EQ(write(pipe[1], &info, sizeof info), static_cast<ssize_t>(sizeof info));
    }

    bool run() {
        const auto idle = [this] {
            port.told += "save ";
            signal(SIGTERM);
        };
        return PortLoop(port, pipe[0], idle).run(error);
    }

    int pipe[2] = {-1, -1};
    FakePort port;
    std::string error;
};

TEST_F(PortLoopTest, aSignalEndsItAndThePortIsTakenAway) {
    signal(SIGTERM);
    EXPECT_TRUE(run());
    EXPECT_EQ(port.told, "plug unplug ");
}

TEST_F(PortLoopTest, theResetButton) {
    signal(SIGUSR1);
    signal(SIGUSR1);
    signal(SIGINT);
    EXPECT_TRUE(run());
    EXPECT_EQ(port.told, "plug reset reset unplug ");
}

TEST_F(PortLoopTest, aPortThatCannotBeMade) {
    port.possible = false;
    EXPECT_FALSE(run());
    EXPECT_EQ(error, "there is no place");
}

TEST_F(PortLoopTest, aPortThatBreaks) {
    port.broken = true;
    port.dueAt = 0;
    EXPECT_FALSE(run());
    EXPECT_EQ(error, "it broke");
    EXPECT_EQ(port.told, "plug work unplug ");
}

TEST_F(PortLoopTest, unpluggedForGood) {
    port.hangups = {Hangup{}};
    port.dueAt = 0;
    EXPECT_TRUE(run());
    EXPECT_EQ(port.told, "plug work drain unplug ");
}

TEST_F(PortLoopTest, unpluggedAndPluggedInAgain) {
    port.hangups = {Hangup{}, Hangup{1}};
    port.dueAt = 0;
    EXPECT_TRUE(run());
    EXPECT_EQ(port.told, "plug work drain unplug power plug work drain unplug ");
}

TEST_F(PortLoopTest, savesWhenThePortHasBeenQuiet) {
    const Nanoseconds begin = clockNow();
    port.rest().disturb(begin);
    EXPECT_TRUE(run());
    EXPECT_EQ(port.told, "plug work save unplug ");
    EXPECT_GE(clockNow() - begin, Rest::quiet);
}

TEST_F(PortLoopTest, doesNotSaveShortlyBeforeSomethingIsDue) {
    const Nanoseconds begin = clockNow();
    port.rest().disturb(begin);
    port.dueAt = begin + 3 * Rest::quiet / 2;
    EXPECT_TRUE(run());
    EXPECT_FALSE(port.dueAt);
    EXPECT_NE(port.told.find("work save unplug"), std::string::npos) << port.told;
    EXPECT_GE(clockNow() - begin, 3 * Rest::quiet / 2);
}

} // namespace
} // namespace sim
