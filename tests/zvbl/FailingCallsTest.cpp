// The serial links on a tty in this process whose every system call fails once, in each way, and whose every answer is
// harmed once. A job that says that it is done has done what it does on a good line, and whatever fails ends in its
// time.

#include <array>
#include <cerrno>

#include <gtest/gtest.h>

#include "tests/fuzz/LinkJob.h"
#include "tests/fuzz/Peers.h"

namespace {

constexpr BYTE usart = 0;
constexpr BYTE can = 3;
constexpr unsigned flash = 0x08000000;
constexpr unsigned timeoutMs = 50;
constexpr int cantOpen = 3;
constexpr int badArgument = 0x21;
constexpr std::int64_t longestJob = std::int64_t(100) * 1000000000;

using Bytes = std::vector<std::uint8_t>;

struct Made {
    int status;
    std::array<BYTE, 300> read{};
};

int job(HANDLE link, Made &made) {
    BYTE data[40] = {1, 2, 3, 4, 5};
    BYTE sector[] = {0, 0};
    Commands known{};
    int status = Interface_Open(link);
    status = status ? status : SetTimeOut(link, timeoutMs);
    status = status ? status : ZVBL_Init_BL(link, 0, 0, 0);
    status = status ? status : ZVBL_GET(link, made.read.data(), &known);
    status = status ? status : ZVBL_ERASE(link, 1, sector, 1024);
    status = status ? status : ZVBL_DNLOAD(link, flash, data, sizeof data, 0);
    return status ? status : ZVBL_UPLOAD(link, flash, made.read.data(), made.read.size());
}

// One job on a new chip.
Made run(BYTE kind, const Bytes &harm = {}) {
    static HANDLE links[can + 1] = {};
    fuzz::ChipPeer chip;
    fuzz::AdapterPeer adapter;
    fuzz::Input damage(harm.data(), harm.size());
    fuzz::plugIn(kind == usart ? static_cast<fuzz::Peer &>(chip) : adapter, damage);
    TARGET_SetComIntType(kind);
    if (!links[kind])
        EXPECT_EQ(SetCOMSettings(&links[kind], 0, fuzz::ttyName, 115200, 8, 2, 1.0F), 0);
    Made made{};
    made.status = job(links[kind], made);
    EXPECT_LT(fuzz::ttyTime(), longestJob);
    Interface_Close(links[kind]);
    return made;
}

struct Failure {
    const char *call;
    int error;
    bool harmless; // the job is done all the same; else it may be where the answers were all there
};

constexpr Failure failures[] = {
    {"open", EACCES, false}, {"isatty", ENOTTY, false}, {"flock", EWOULDBLOCK, false}, {"read", EINTR, true},
    {"read", EIO, false},    {"read", 0, false},        {"write", EINTR, true},        {"write", EAGAIN, true},
    {"write", EIO, false},   {"write", 0, true},        {"ppoll", EINTR, true},        {"ppoll", ENOMEM, false},
    {"ppoll", 0, false},
};

// Gives how many jobs said that they failed.
int failAt(BYTE kind, const Failure &failure, const Made &good) {
    int failed = 0;
    for (unsigned after = 0;; ++after) {
        SCOPED_TRACE(std::string(failure.call) + " " + std::to_string(after) + ", " + std::to_string(failure.error));
        fuzz::failOnce({failure.call, after, failure.error});
        const Made made = run(kind);
        if (!fuzz::ttyHasFailed())
            return failed;
        if (made.status == 0)
            EXPECT_EQ(made.read, good.read);
        else
            ++failed;
    }
}

void failEach(BYTE kind) {
    const Made good = run(kind);
    ASSERT_EQ(good.status, 0);
    for (const Failure &failure : failures)
        EXPECT_EQ(failAt(kind, failure, good) == 0, failure.harmless) << failure.call << ", " << failure.error;
}

TEST(FailingCallsTest, OfTheSerialLine) {
    failEach(usart);
}

TEST(FailingCallsTest, OfTheCanAdapter) {
    failEach(can);
}

// What a driver does not take makes a port that can't be opened, or is left out.
TEST(FailingCallsTest, ControlOfThePort) {
    for (const int error : {EIO, EINVAL})
        for (unsigned after = 0;; ++after) {
            fuzz::failOnce({"ioctl", after, error});
            const Made made = run(usart);
            if (!fuzz::ttyHasFailed())
                break;
            EXPECT_TRUE(made.status == 0 || made.status == cantOpen || made.status == badArgument) << made.status;
        }
}

// What becomes of one answer: as the tty takes it.
const Bytes harms[] = {
    {1},                              // lost
    {2, 1, '\a'},                     // refused by the adapter
    {2, 2, '\a', '\a'},               // twice
    {2, 2, 'Z', '\r'},                // an acknowledgement of another form
    {2, 5, 't', '9', '0', '0', '\r'}, // no frame
    {2, 6, 't', '1', '2', '3', '/', '\r'},
    {2, 8, 't', '1', '2', '3', '1', 'g', '0', '\r'},
    {3},                          // doubled
    {5, 1},                       // cut
    {6, 255},                     // late
    {7, 3, '\r', '\a', '\r', 1},  // and more after it
    {7, 3, 0x79, 0x1F, 0x79, 30}, // and bytes that look like answers
    {8},                          // gone
};

void harmEach(BYTE kind) {
    const Made good = run(kind);
    constexpr std::size_t answers = 60;
    for (const Bytes &harm : harms)
        for (std::size_t at = 0; at < answers; ++at) {
            SCOPED_TRACE(std::to_string(harm.front()) + " at answer " + std::to_string(at));
            Bytes all(at);
            all.insert(all.end(), harm.begin(), harm.end());
            const Made made = run(kind, all);
            if (made.status == 0)
                EXPECT_EQ(made.read, good.read);
        }
}

TEST(FailingCallsTest, HarmedAnswersOfTheSerialLine) {
    harmEach(usart);
}

TEST(FailingCallsTest, HarmedAnswersOfTheCanAdapter) {
    harmEach(can);
}

} // namespace
