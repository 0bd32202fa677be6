// A lost frame, and one that comes twice, at every position of a few commands between the library and the
// simulated chip. Whatever happens: what is reported as done is done, and the next command works.

#include <csignal>
#include <numeric>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "libs/zvbl/Command.h"
#include "tests/zvbl/CanFixture.h"

namespace {

constexpr std::uint32_t flash = 0x08000000;

class CanSweepTest : public CanFixture, public ::testing::WithParamInterface<const char *> {
protected:
    void SetUp() override {
        openOn(500000);                                       // a frame that comes twice comes a frame later
        setOpeningPause(6000, std::chrono::milliseconds(20)); // a busy machine may hold up the bus
        ASSERT_EQ(Interface_Open(link), 0);
        const std::string log = bus->directory() + "/chip";
        const char *words[] = {ZV32_SIM_PROGRAM, "--chip", "ZV32F403A_1024K", "--can",
                               "can0",           "--log",  log.c_str(),       nullptr};
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        m_chip = fork();
        if (m_chip == 0) {
            dup2(ready[1], STDOUT_FILENO);
            execv(words[0], const_cast<char *const *>(words));
            _exit(127);
        }
        char c = 0;
        ::close(ready[1]);
        ASSERT_EQ(read(ready[0], &c, 1), 1); // "ready can0"
        ::close(ready[0]);
        ASSERT_EQ(SetTimeOut(link, 1000), 0);
        ASSERT_EQ(ZVBL_Init_BL(link, 0, 0, 0), 0);
        ASSERT_EQ(SetTimeOut(link, 250), 0);
    }
    void TearDown() override {
        CanFixture::TearDown();
        kill(m_chip, SIGKILL);
        waitpid(m_chip, nullptr, 0);
    }

    int erase() {
        BYTE sector[] = {0, 0};
        return ZVBL_ERASE(link, 1, sector, 2048);
    }
    zvbl::Bytes memory(std::size_t length) {
        zvbl::Bytes bytes(length);
        EXPECT_EQ(ZVBL_UPLOAD(link, flash, bytes.data(), static_cast<unsigned>(length)), 0);
        return bytes;
    }
    void goWrong(int frame) { bus->tell(GetParam() + std::string(" ") + std::to_string(frame)); }

    // Nothing of the fault is left for later.
    void goRight() { goWrong(0); }

private:
    pid_t m_chip = -1;
};

TEST_P(CanSweepTest, Erasing) {
    zvbl::Bytes zeros(8, 0);
    for (int frame = 1; frame <= 4; ++frame) {
        SCOPED_TRACE(frame);
        ASSERT_EQ(erase(), 0);
        ASSERT_EQ(ZVBL_DNLOAD(link, flash, zeros.data(), 8, 0), 0);
        goWrong(frame);
        const int status = erase();
        goRight();
        EXPECT_TRUE(status == 0 || status == 5) << status;
        if (status == 0)
            EXPECT_EQ(memory(8), zvbl::Bytes(8, 0xFF));
    }
}

// A short packet and a long one, both from a blank sector.
TEST_P(CanSweepTest, Writing) {
    for (const unsigned length : {12U, 128U}) {
        zvbl::Bytes data(length);
        std::iota(data.begin(), data.end(), std::uint8_t{1});
        const int frames = 5 + static_cast<int>((length + 2 + 7) / 8);
        for (int frame = 1; frame <= frames; ++frame) {
            if (frame == 8)
                frame = frames - 3; // in the middle one is like the other
            SCOPED_TRACE(std::to_string(length) + " bytes, frame " + std::to_string(frame));
            ASSERT_EQ(erase(), 0);
            goWrong(frame);
            const int status = ZVBL_DNLOAD(link, flash, data.data(), length, 0);
            goRight();
            EXPECT_EQ(status, 0);
            EXPECT_EQ(memory(length), data);
        }
    }
}

// Replies that end within a frame and with one.
TEST_P(CanSweepTest, Reading) {
    zvbl::Bytes data(64);
    std::iota(data.begin(), data.end(), std::uint8_t{1});
    ASSERT_EQ(erase(), 0);
    ASSERT_EQ(ZVBL_DNLOAD(link, flash, data.data(), 64, 0), 0);
    for (const unsigned length : {15U, 20U}) {
        const zvbl::Bytes expected(data.begin(), data.begin() + length);
        for (int frame = 1; frame <= 6 + static_cast<int>((length + 1 + 7) / 8); ++frame) {
            SCOPED_TRACE(std::to_string(length) + " bytes, frame " + std::to_string(frame));
            goWrong(frame);
            EXPECT_EQ(memory(length), expected);
            goRight();
            EXPECT_EQ(memory(length), expected);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Frames, CanSweepTest, ::testing::Values("lose", "double"),
                         [](const auto &fault) { return std::string(fault.param); });

} // namespace
