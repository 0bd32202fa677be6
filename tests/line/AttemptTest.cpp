#include "line/gang/Attempt.h"

#include <optional>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tests/line/FewDescriptors.h"

namespace {

// An attempt whose process is the test.
class AttemptTest : public testing::Test {
protected:
    AttemptTest() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        shared = memfd_create("unit", MFD_CLOEXEC);
        attempt = std::make_unique<Attempt>(std::make_unique<Channel>(ends[0]), Descriptor(dup(shared)));
        theirs = std::make_unique<Channel>(ends[1]);
    }
    ~AttemptTest() override { close(shared); }

    void tellStep(const char *name) {
        theirs->send({{"event", "step"}, {"step", name}});
        EXPECT_EQ(attempt->next(), Attempt::Event::step);
    }
    // As it is shown.
    int percentOf(const Progress &progress) {
        EXPECT_EQ(pwrite(shared, &progress, sizeof progress, 0), static_cast<ssize_t>(sizeof progress));
        attempt->look();
        return attempt->percent();
    }

    int shared;
    std::unique_ptr<Attempt> attempt;
    std::unique_ptr<Channel> theirs;
};

} // namespace

TEST_F(AttemptTest, APercentIsOfTheStepThatWasTold) {
    attempt->look();
    EXPECT_EQ(attempt->percent(), -1);
    tellStep("erase");
    EXPECT_EQ(percentOf({1, 40}), 40);
    EXPECT_EQ(percentOf({2, 50}), -1);
    tellStep("write");
    EXPECT_EQ(attempt->percent(), -1);
    attempt->look();
    EXPECT_EQ(attempt->percent(), 50);
    EXPECT_EQ(percentOf({2, 101}), -1);
    EXPECT_EQ(percentOf({2, 100}), 100);
}

TEST_F(AttemptTest, AStepWhosePercentMovesIsNotSilent) {
    tellStep("write");
    const auto told = attempt->deadline();
    EXPECT_EQ(percentOf({1, 1}), 1);
    const auto moved = attempt->deadline();
    EXPECT_GT(moved, told);
    EXPECT_EQ(percentOf({1, 1}), 1);
    EXPECT_EQ(attempt->deadline(), moved);
}

TEST_F(AttemptTest, WhileItIsOurTurnNothingIsAwaited) {
    tellStep("identify");
    theirs->send({{"event", "identified"},
                  {"chip", "C"},
                  {"pid", "1"},
                  {"bootloader", "2.1"},
                  {"uid", "59a1bed7a33c9c89dbbf1bf2"}});
    EXPECT_EQ(attempt->next(), Attempt::Event::identified);
    EXPECT_EQ(percentOf({1, 7}), 7);
    EXPECT_EQ(attempt->deadline(), Attempt::Clock::time_point::max());
}

TEST_F(AttemptTest, TheImageStandsBehindTheProgress) {
    attempt->go({{0x08000000, "abcd"}, {0x08000800, "efgh"}});
    char bytes[imagePlace + 9];
    ASSERT_EQ(pread(shared, bytes, sizeof bytes, 0), static_cast<ssize_t>(imagePlace + 8));
    EXPECT_EQ(std::string(bytes + imagePlace, 8), "abcdefgh");
}

// What a machine without descriptors costs is the unit, not the line.
TEST(AttemptWithoutChannel, HasFailedAtOnce) {
    std::optional<FewDescriptors> few(2); // the shared file, and one end of the channel
    Attempt attempt(Json::object());
    few.reset();
    attempt.stop();
    EXPECT_LE(attempt.deadline(), Attempt::Clock::now());
    EXPECT_EQ(attempt.next(), Attempt::Event::end);
    EXPECT_EQ(attempt.outcome().cause, "worker-crash");
    EXPECT_EQ(attempt.outcome().text, "connect: no channel to be had: Too many open files");
    EXPECT_EQ(attempt.deadline(), Attempt::Clock::time_point::max());
    EXPECT_EQ(attempt.next(), Attempt::Event::nothing);
}
