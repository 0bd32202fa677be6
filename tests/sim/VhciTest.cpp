// The ports of vhci_hcd with a kernel that the test plays: its files in a directory, and the end of the socket that it
// is given. The calls are caught by the linker (CMakeLists.txt).

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <deque>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "sim/ports/Clock.h"
#include "sim/ports/usb/VhciPort.h"
#include "tests/sim/UsbRig.h"

namespace {

struct {
    std::deque<int> refusals; // of what is written to "attach"
    std::string words;        // that were written there
    int socket = -1;          // that came with them
    int socketError = 0;
    time_t late = 0; // how many seconds the clock goes before the real one: each wait takes one
} kernel;

bool isAttach(int fd) {
    const std::filesystem::path link = "/proc/self/fd/" + std::to_string(fd);
    std::error_code error;
    return std::filesystem::read_symlink(link, error).filename() == "attach";
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

ssize_t __real_write(int fd, const void *bytes, size_t count);
int __real_socketpair(int domain, int type, int protocol, int *ends);
int __real_clock_gettime(clockid_t clock, struct timespec *time);

ssize_t __wrap_write(int fd, const void *bytes, size_t count) {
    if (!isAttach(fd))
        return __real_write(fd, bytes, count);
    if (!kernel.refusals.empty()) {
        errno = kernel.refusals.front();
        kernel.refusals.pop_front();
        return -1;
    }
    kernel.words.assign(static_cast<const char *>(bytes), count);
    int given = -1;
    std::sscanf(kernel.words.c_str(), "%*d %d", &given);
    kernel.socket = dup(given);
    return static_cast<ssize_t>(count);
}

int __wrap_socketpair(int domain, int type, int protocol, int *ends) {
    errno = kernel.socketError;
    return kernel.socketError != 0 ? -1 : __real_socketpair(domain, type, protocol, ends);
}

int __wrap_poll(pollfd *, nfds_t, int) {
    ++kernel.late;
    return 0;
}

int __wrap_clock_gettime(clockid_t clock, struct timespec *time) {
    const int status = __real_clock_gettime(clock, time);
    time->tv_sec += kernel.late;
    return status;
}
}
#pragma GCC visibility pop

namespace sim {
namespace {

namespace fs = std::filesystem;

class VhciTest : public ::testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/zv32-vhci-XXXXXX";
        root = mkdtemp(name);
        places = {root / "sys", root / "dev"};
        controller = root / "sys/devices/platform/vhci_hcd.0";
        put(controller / "attach", "");
        put(controller / "status", "hub port sta spd dev      sockfd local_busid\n"
                                   "hs  0000 006 002 00010002 000005 0-0\n"
                                   "ss  0008 004 000 00000000 000000 0-0\n"
                                   "hs  0003 004 000 00000000 000000 0-0\n");
        kernel = {};
    }
    void TearDown() override {
        hangUp();
        fs::remove_all(root);
    }

    static void put(const fs::path &path, const std::string &text) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }

    // What the kernel shows of the device in port 3, which it gave the numbers 5 and 9.
    void showDevice() {
        put(controller / "usb4/speed", "5000\n");
        put(controller / "usb5/speed", "480\n");
        put(controller / "usb5/5-4/5-4:1.0/bInterfaceNumber", "00\n");
        put(controller / "usb5/5-4/busnum", "5\n");
        put(controller / "usb5/5-4/devnum", "9\n");
        put(root / "dev/bus/usb/005/009", "");
    }

    // The kernel's end of the device's cable.
    static void hangUp() {
        if (kernel.socket >= 0)
            close(std::exchange(kernel.socket, -1));
    }
    static void say(const std::string &text) {
        const Bytes bytes = parseBytes(text);
        EXPECT_EQ(send(kernel.socket, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
    }
    static Bytes heard() {
        Bytes bytes(1000);
        bytes.resize(static_cast<std::size_t>(
            std::max<ssize_t>(recv(kernel.socket, bytes.data(), bytes.size(), MSG_DONTWAIT), 0)));
        return bytes;
    }

    fs::path root;
    fs::path controller;
    UsbPlaces places;
    std::string error;
};

TEST_F(VhciTest, AFreePortIsTakenAndKept) {
    Vhci vhci(places);
    for (int times = 0; times < 2; ++times) {
        ASSERT_TRUE(vhci.plugIn(UsbSpeed::full, error)) << error;
        EXPECT_EQ(kernel.words.substr(0, 2), "3 ");
        EXPECT_EQ(kernel.words.substr(kernel.words.find(' ', 2)), " 65538 2");
        EXPECT_GE(vhci.fd(), 0);
        vhci.unplug();
        EXPECT_EQ(vhci.fd(), -1);
        hangUp();
        put(controller / "status", "");
    }
}

TEST_F(VhciTest, WithoutThePortThereIsAMessage) {
    Vhci full(places);
    put(controller / "status", "hs  0000 006 002 00010002 000005 0-0\n");
    EXPECT_FALSE(full.plugIn(UsbSpeed::full, error));
    EXPECT_EQ(error, "no port of vhci_hcd is free");
    fs::remove(controller / "status");
    EXPECT_FALSE(full.plugIn(UsbSpeed::full, error));
    EXPECT_EQ(error, "the kernel has no vhci_hcd: modprobe vhci-hcd");
}

TEST_F(VhciTest, ThePortOfBeforeIsWaitedForButNotForEver) {
    Vhci vhci(places);
    kernel.refusals = {EBUSY, EBUSY};
    EXPECT_TRUE(vhci.plugIn(UsbSpeed::high, error)) << error;
    EXPECT_EQ(kernel.words.substr(kernel.words.size() - 2), " 3");
    vhci.unplug();
    kernel.refusals = {EBUSY, EBUSY, EBUSY, EBUSY};
    EXPECT_FALSE(vhci.plugIn(UsbSpeed::high, error));
    EXPECT_EQ(error, "cannot plug a device into vhci_hcd: Device or resource busy");
    EXPECT_EQ(vhci.fd(), -1);
}

TEST_F(VhciTest, WhatTheKernelRefusesIsTold) {
    Vhci vhci(places);
    kernel.refusals = {EACCES};
    EXPECT_FALSE(vhci.plugIn(UsbSpeed::full, error));
    EXPECT_EQ(error, "cannot plug a device into vhci_hcd: Permission denied; that takes root");
    fs::remove(controller / "attach");
    EXPECT_FALSE(vhci.plugIn(UsbSpeed::full, error));
    EXPECT_EQ(error, "cannot plug a device into vhci_hcd: No such file or directory");
    kernel.socketError = EMFILE;
    EXPECT_FALSE(vhci.plugIn(UsbSpeed::full, error));
    EXPECT_EQ(error, "cannot make a socket: Too many open files");
}

// Each step of the way to the node may be missing for a while.
TEST_F(VhciTest, TheNodeIsTheKernels) {
    Vhci vhci(places);
    ASSERT_TRUE(vhci.plugIn(UsbSpeed::full, error)) << error;
    EXPECT_EQ(vhci.node(""), "");
    showDevice();
    EXPECT_EQ(vhci.node(""), root / "dev/bus/usb/005/009");
    EXPECT_EQ(vhci.node("*/tty/*"), "");
    fs::create_directories(controller / "usb5/5-4/5-4:1.0/tty/ttyACM0");
    EXPECT_EQ(vhci.node("*/tty/*"), "");
    put(root / "dev/ttyACM0", "");
    EXPECT_EQ(vhci.node("*/tty/*"), root / "dev/ttyACM0");
    for (const char *missing : {"dev/bus/usb/005/009", "sys/devices/platform/vhci_hcd.0/usb5/5-4/devnum",
                                "sys/devices/platform/vhci_hcd.0/usb5/5-4/busnum",
                                "sys/devices/platform/vhci_hcd.0/usb5/5-4/5-4:1.0/bInterfaceNumber",
                                "sys/devices/platform/vhci_hcd.0/usb5/speed"}) {
        fs::remove(root / missing);
        EXPECT_EQ(vhci.node(""), "") << missing;
    }
}

class VhciPortTest : public VhciTest {
protected:
    // SUBMIT of a control transfer towards the host, or of one without data.
    static std::string ask(const std::string &setup, std::uint8_t length) {
        return "00 00 00 01 00 00 00 0D 00 01 00 02 00 00 00 " + std::string(length != 0 ? "01" : "00") +
               " 00 00 00 00 00 00 02 00 00 00 00 " + showBytes({length}) + " 00 00 00 00 FF FF FF FF 00 00 00 00 " +
               setup + " ";
    }
    static const inline std::string deviceDescriptor = ask("80 06 00 01 00 00 12 00", 0x12);
    static const inline std::string chooseConfiguration = ask("00 09 01 00 00 00 00 00", 0);
    static const inline std::string dfuStatus = ask("A1 03 00 00 00 00 06 00", 6);

    bool work(Port &port) { return port.work(clockNow(), error); }
};

TEST_F(VhciPortTest, TransfersGoThroughToTheDevice) {
    UsbRig rig("ZV32F403A_1024K");
    VhciPort port(rig.cable, "", places);
    ASSERT_TRUE(port.plugIn(error)) << error;
    EXPECT_EQ(port.fds().size(), 1U);
    EXPECT_FALSE(port.hangup());
    EXPECT_TRUE(work(port)); // nobody has said anything
    EXPECT_TRUE(heard().empty());
    say(deviceDescriptor);
    EXPECT_TRUE(work(port));
    EXPECT_TRUE(work(port));
    const Bytes answer = heard();
    ASSERT_EQ(answer.size(), 48U + 18);
    EXPECT_EQ(showBytes({answer.begin() + 48, answer.begin() + 52}), "12 01 00 02");
}

TEST_F(VhciPortTest, TheNodeIsToldOnce) {
    UsbRig rig("ZV32F403A_1024K");
    VhciPort port(rig.cable, "", places);
    EXPECT_EQ(port.takeReady(), "");
    EXPECT_EQ(port.due(second), std::nullopt);
    ASSERT_TRUE(port.plugIn(error)) << error;
    EXPECT_EQ(port.takeReady(), "");
    EXPECT_EQ(port.due(second), second + 5 * millisecond); // to look again
    showDevice();
    EXPECT_EQ(port.takeReady(), root / "dev/bus/usb/005/009");
    EXPECT_EQ(port.takeReady(), "");
    EXPECT_EQ(port.due(second), std::nullopt);
    port.reset(clockNow());
    port.losePower(clockNow());
    EXPECT_TRUE(work(port));
    EXPECT_EQ(port.fds(), std::vector<int>{-1});
    ++kernel.late;
    EXPECT_TRUE(work(port)); // it is another device now
    EXPECT_EQ(port.takeReady(), root / "dev/bus/usb/005/009");
    port.losePower(clockNow());
    ++kernel.late;
    EXPECT_TRUE(work(port)); // it went and came between two turns
    EXPECT_EQ(port.takeReady(), root / "dev/bus/usb/005/009");
}

TEST_F(VhciPortTest, WhoTakesItAwayOrSpeaksNonsenseEndsIt) {
    UsbRig rig("ZV32F403A_1024K");
    VhciPort detached(rig.cable, "", places);
    ASSERT_TRUE(detached.plugIn(error)) << error;
    hangUp();
    EXPECT_TRUE(work(detached));
    EXPECT_TRUE(detached.hangup());

    VhciPort confused(rig.cable, "", places);
    ASSERT_TRUE(confused.plugIn(error)) << error;
    say("00 00 00 09 00*44");
    EXPECT_TRUE(work(confused));
    EXPECT_TRUE(confused.hangup());
}

TEST_F(VhciPortTest, ADeviceGoesAndComesWithItsPlug) {
    UsbRig rig("ZV32F403A_1024K", {"tx-hangup@1:1000"});
    VhciPort port(rig.cable, "", places);
    ASSERT_TRUE(port.plugIn(error)) << error;
    say(chooseConfiguration + dfuStatus);
    EXPECT_TRUE(work(port));
    EXPECT_FALSE(port.hangup());
    EXPECT_EQ(port.fds(), std::vector<int>{-1});
    EXPECT_TRUE(work(port));
    kernel.late += 2;
    kernel.refusals = {EIO};
    EXPECT_FALSE(work(port));
    EXPECT_EQ(error, "cannot plug a device into vhci_hcd: Input/output error");
    EXPECT_TRUE(work(port));
    EXPECT_NE(port.fds(), std::vector<int>{-1});
    port.unplug();
    EXPECT_EQ(port.fds(), std::vector<int>{-1});
}

TEST_F(VhciPortTest, OneThatIsUnpluggedForGoodHangsUp) {
    UsbRig rig("ZV32F403A_1024K", {"tx-hangup@1"});
    VhciPort port(rig.cable, "", places);
    ASSERT_TRUE(port.plugIn(error)) << error;
    say(chooseConfiguration + dfuStatus);
    EXPECT_TRUE(work(port));
    EXPECT_TRUE(port.hangup());
}

} // namespace
} // namespace sim
