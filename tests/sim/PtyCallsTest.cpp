// The pseudo terminal of a port on a system whose calls fail. They are caught by the linker (CMakeLists.txt).

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <termios.h>
#include <unistd.h>

#include "sim/ports/Clock.h"
#include "sim/ports/pty/Pty.h"
#include "tests/sim/NodeRig.h"

namespace {

struct {
    std::string call;
    int after = 0; // calls that work before it
} failing;

bool fails(const char *call) {
    if (failing.call != call || failing.after-- > 0)
        return false;
    errno = EIO;
    return true;
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int __real_posix_openpt(int flags);
int __real_grantpt(int fd);
int __real_unlockpt(int fd);
int __real_ptsname_r(int fd, char *name, size_t room);
int __real_tcgetattr(int fd, struct termios *settings);
int __real_fcntl(int fd, int command, ...);
int __real_ioctl(int fd, unsigned long request, ...);
int __real_rename(const char *from, const char *to);
int __real_inotify_init1(int flags);
int __real_inotify_add_watch(int fd, const char *path, std::uint32_t mask);

int __wrap_posix_openpt(int flags) {
    return fails("posix_openpt") ? -1 : __real_posix_openpt(flags);
}
int __wrap_grantpt(int fd) {
    return fails("grantpt") ? -1 : __real_grantpt(fd);
}
int __wrap_unlockpt(int fd) {
    return fails("unlockpt") ? -1 : __real_unlockpt(fd);
}
int __wrap_ptsname_r(int fd, char *name, size_t room) {
    return fails("ptsname_r") ? -1 : __real_ptsname_r(fd, name, room);
}
int __wrap_tcgetattr(int fd, struct termios *settings) {
    return fails("tcgetattr") ? -1 : __real_tcgetattr(fd, settings);
}
int __wrap_fcntl(int fd, int command, int argument) {
    return fails("fcntl") ? -1 : __real_fcntl(fd, command, argument);
}
int __wrap_ioctl(int fd, unsigned long request, void *argument) {
    return fails("ioctl") ? -1 : __real_ioctl(fd, request, argument);
}
int __wrap_rename(const char *from, const char *to) {
    return fails("rename") ? -1 : __real_rename(from, to);
}
int __wrap_inotify_init1(int flags) {
    return fails("inotify_init1") ? -1 : __real_inotify_init1(flags);
}
int __wrap_inotify_add_watch(int fd, const char *path, std::uint32_t mask) {
    return fails("inotify_add_watch") ? -1 : __real_inotify_add_watch(fd, path, mask);
}
}
#pragma GCC visibility pop

namespace sim {
namespace {

class PtyCalls : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/zv32-pty-XXXXXX";
        directory = mkdtemp(name);
        link = directory + "/tty";
    }
    void TearDown() override {
        failing = {};
        std::filesystem::remove_all(directory);
    }
    void turn() { pty.followClients(clockNow()); }

    std::string directory;
    std::string link;
    std::string error;
    Pty pty;
};

TEST_F(PtyCalls, WithoutATerminalNothingIsLeft) {
    for (const char *call : {"posix_openpt", "grantpt", "unlockpt", "ptsname_r", "ioctl", "tcgetattr", "fcntl"}) {
        failing = {call};
        EXPECT_FALSE(pty.open(link, error)) << call;
        EXPECT_EQ(error, "cannot make a pseudo terminal: Input/output error") << call;
        EXPECT_TRUE(std::filesystem::is_empty(directory)) << call;
        EXPECT_EQ(pty.fd(), -1) << call;
    }
}

TEST_F(PtyCalls, NorWithoutTheLink) {
    failing = {"rename"};
    EXPECT_FALSE(pty.open(link, error));
    EXPECT_EQ(error, "cannot make the link \"" + link + "\": Input/output error");
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

// Who cannot be watched counts as there.
TEST_F(PtyCalls, WithoutAWatchSomebodyIsThere) {
    for (const char *call : {"inotify_init1", "inotify_add_watch"}) {
        failing = {call, call == std::string("inotify_add_watch") ? 1 : 0};
        ASSERT_TRUE(pty.open(link, error)) << error;
        failing = {};
        EXPECT_EQ(pty.watchFd(), -1) << call;
        turn();
        EXPECT_TRUE(pty.write({1})) << call;
        pty.close();
    }
}

TEST_F(PtyCalls, WhoIsHeardIsThereAndNobodyIsToldOfWhatNobodyReads) {
    std::uint8_t bytes[10];
    ASSERT_TRUE(pty.open(link, error)) << error;
    EXPECT_FALSE(pty.write({1})); // to nobody
    OpenFile client(link);
    ASSERT_EQ(::write(client.fd(), "a", 1), 1);
    client.leave();
    EXPECT_EQ(pty.read(bytes, sizeof bytes, clockNow() + second), 1U); // from nobody, long after he has left
    turn();
    EXPECT_TRUE(pty.write({1}));
    pty.drain(); // in vain
    failing = {"ioctl", 0};
    EXPECT_EQ(pty.baud(), 0U);
    failing = {"tcgetattr"};
    EXPECT_FALSE(pty.hangsUpOnClose());
    pty.hangUpOnClose();
    failing = {};
    pty.hangUpOnClose();
    EXPECT_TRUE(pty.hangsUpOnClose());
}

} // namespace
} // namespace sim
