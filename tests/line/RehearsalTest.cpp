#include "line/rehearsal/Rehearsal.h"

#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>

#include "line/channel/Child.h"
#include "line/plan/Order.h"
#include "line/rehearsal/SimulatedChip.h"
#include "programs/Status.h"
#include "tests/line/LineFiles.h"

namespace {

constexpr int patience = 20000; // ms

class RehearsalTest : public LineFiles {
protected:
    RehearsalTest() { write("job.toml", with("\"on\"", "\"leave\"")); }

    Outcome attempt(const MakeImage &makeImage, const std::string &port) {
        const Job read = readJob(path("job.toml"));
        const Chip chip(read.chip, read.chipPlace);
        const Runs image = imageOf(read, chip);
        const Plan plan = planOf(read, chip, image);
        const Json link = {{"kind", "usart"}, {"port", port}};
        return attemptAlone(makeOrder(read, plan, link), makeImage, [](const std::string &) {});
    }
};

// Kills those of our processes that have this name.
void killOurs(const std::string &name) {
    std::ifstream children("/proc/thread-self/children");
    for (pid_t child = 0; children >> child;) {
        std::ifstream file("/proc/" + std::to_string(child) + "/comm");
        std::string comm;
        file >> comm;
        if (comm == name)
            kill(child, SIGKILL);
    }
}

} // namespace

TEST_F(RehearsalTest, ADeadWorkerIsAFailureOfTheUnit) {
    const SimulatedChip chip("ZV32F403A_1024K", "");
    const Outcome outcome = attempt(
        [](const std::string &) -> Runs {
            killOurs("zv32-unit");
            return {{0x08000000, "abcd"}};
        },
        chip.port());
    EXPECT_EQ(outcome.cause, "worker-crash");
}

TEST_F(RehearsalTest, AMissingPortIsNamed) {
    EXPECT_EQ(attempt([](const std::string &) -> Runs { return {}; }, path("none")).cause, "no-port");
}

TEST_F(RehearsalTest, DataWithoutRoomEndTheAttempt) {
    const SimulatedChip chip("ZV32F403A_1024K", "");
    EXPECT_THROW(attempt([](const std::string &) -> Runs { throw Refusal(notMade, "no room"); }, chip.port()), Refusal);
}

TEST(ChildTest, EndsWithItsParent) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t parent = fork();
    if (parent == 0) {
        char begun;
        new Child("/bin/sh", {"-c", "echo; exec sleep 1000"}, {{ends[1], STDOUT_FILENO}});
        _exit(read(ends[0], &begun, 1) == 1 ? 0 : 1); // without the end of any block
    }
    close(ends[1]);
    int status = -1;
    waitpid(parent, &status, 0);
    EXPECT_EQ(status, 0);
    pollfd ended = {ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&ended, 1, patience), 1); // nobody holds the other end any more
    close(ends[0]);
}
