// The port: opening, sharing, settings, control lines, and two links at once.

#include <filesystem>

#include <asm/termbits.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/zvbl/LinkFixture.h"

namespace {

class PortTest : public LinkFixture {
protected:
    termios2 line() {
        termios2 settings{};
        EXPECT_EQ(ioctl(pty.hostEnd(), TCGETS2, &settings), 0);
        return settings;
    }
    int configure(int rate, int bits, int parity, float stop) {
        return SetCOMSettings(&link, 0, pty.path().c_str(), rate, bits, parity, stop);
    }
};

int openPort(const char *name) {
    HANDLE other = nullptr;
    EXPECT_EQ(SetCOMSettings(&other, 0, name, 115200, 8, 2, 1.0F), 0);
    return Interface_Open(other);
}

TEST_F(PortTest, OpenAndClose) {
    EXPECT_EQ(Interface_is_Open(link), 1);
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_is_Open(link), 0);
    EXPECT_EQ(Interface_Close(link), 1);
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(play({{"D4 2B", "79"}}, [&] { return ZVBL_ResetMCU(link); }), 0);
}

TEST_F(PortTest, AnOpenLinkIsOpenedAfresh) {
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(Interface_is_Open(link), 1);
    EXPECT_EQ(play({{"D4 2B", "79"}}, [&] { return ZVBL_ResetMCU(link); }), 0);
}

TEST_F(PortTest, WhatCannotBeOpenedIs3) {
    EXPECT_EQ(openPort(""), 3);
    EXPECT_EQ(openPort(nullptr), 3);
    EXPECT_EQ(openPort("no-such-port"), 3);
    EXPECT_EQ(openPort("/dev/null"), 3);
    EXPECT_EQ(openPort("/"), 3);
}

TEST_F(PortTest, ANameWithoutASlashInFrontIsOneOfDev) {
    ASSERT_EQ(Interface_Close(link), 0);
    ASSERT_EQ(pty.path().substr(0, 5), "/dev/");
    HANDLE other = nullptr;
    ASSERT_EQ(SetCOMSettings(&other, 0, pty.path().substr(5).c_str(), 115200, 8, 2, 1.0F), 0);
    EXPECT_EQ(Interface_Open(other), 0);
    EXPECT_EQ(Interface_Close(other), 0);
}

TEST_F(PortTest, ANameWithADotInFrontIsAPath) {
    ASSERT_EQ(Interface_Close(link), 0);
    char directory[] = "/tmp/zvbl-port-XXXXXX";
    ASSERT_NE(mkdtemp(directory), nullptr);
    const std::filesystem::path before = std::filesystem::current_path(), made = directory;
    std::filesystem::create_directory(made / "below");
    std::filesystem::create_symlink(pty.path(), made / "port");
    for (const auto &[from, name] : {std::pair<const char *, const char *>{"", "./port"}, {"below", "../port"}}) {
        std::filesystem::current_path(made / from);
        HANDLE other = nullptr;
        ASSERT_EQ(SetCOMSettings(&other, 0, name, 115200, 8, 2, 1.0F), 0);
        EXPECT_EQ(Interface_Open(other), 0) << name;
        Interface_Close(other);
    }
    EXPECT_EQ(openPort("port"), 3);
    EXPECT_EQ(openPort(".port"), 3);
    std::filesystem::current_path(before);
    std::filesystem::remove_all(made);
}

TEST_F(PortTest, ASecondProgrammerGets3AtOnce) {
    EXPECT_EQ(openPort(pty.path().c_str()), 3);
    const pid_t child = fork();
    if (child == 0)
        _exit(openPort(pty.path().c_str()));
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 3);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(openPort(pty.path().c_str()), 0);
    EXPECT_EQ(Interface_Open(link), 3);
}

TEST_F(PortTest, APortThatAnotherProgramHasLockedIs3) {
    ASSERT_EQ(Interface_Close(link), 0);
    const int other = ::open(pty.path().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(flock(other, LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(Interface_Open(link), 3);
    ::close(other);
    EXPECT_EQ(Interface_Open(link), 0);
}

TEST_F(PortTest, ThePortIsExclusiveWhileItIsOpenAndNotAfterIt) {
    int exclusive = 0;
    ASSERT_EQ(ioctl(pty.hostEnd(), TIOCGEXCL, &exclusive), 0);
    EXPECT_EQ(exclusive, 1);
    ASSERT_EQ(Interface_Close(link), 0);
    ASSERT_EQ(ioctl(pty.hostEnd(), TIOCGEXCL, &exclusive), 0);
    EXPECT_EQ(exclusive, 0);
}

TEST_F(PortTest, AnyRateAndShape) {
    ASSERT_EQ(Interface_Close(link), 0);
    const struct {
        int rate, bits, parity;
        float stop;
        tcflag_t size, twoStops;
    } rows[] = {
        {300, 8, 2, 1.0F, CS8, 0},    {115200, 8, 0, 1.0F, CS8, 0},       {128000, 7, 1, 2.0F, CS7, CSTOPB},
        {256000, 6, 2, 1.0F, CS6, 0}, {1000000, 5, 0, 1.5F, CS5, CSTOPB}, {1234567, 8, 2, 1.0F, CS8, 0},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.rate);
        ASSERT_EQ(configure(row.rate, row.bits, row.parity, row.stop), 0);
        ASSERT_EQ(Interface_Open(link), 0);
        const termios2 now = line();
        EXPECT_EQ(now.c_ospeed, static_cast<speed_t>(row.rate));
        EXPECT_EQ(now.c_ispeed, static_cast<speed_t>(row.rate));
        EXPECT_EQ(now.c_cflag & CSTOPB, row.twoStops);
        EXPECT_EQ(now.c_cflag & PARODD, row.parity == 1 ? tcflag_t{PARODD} : 0);
        EXPECT_EQ(now.c_iflag & (INPCK | IGNPAR), row.parity ? tcflag_t{INPCK | IGNPAR} : 0);
        EXPECT_EQ(now.c_lflag | now.c_oflag, tcflag_t{0});
        EXPECT_EQ(now.c_cflag & HUPCL, tcflag_t{0});
        ASSERT_EQ(Interface_Close(link), 0);
    }
}

TEST_F(PortTest, AnOpenPortTakesNewSettingsAtOnce) {
    EXPECT_EQ(configure(57600, 8, 2, 1.0F), 0);
    EXPECT_EQ(line().c_ospeed, 57600U);
    EXPECT_EQ(configure(57600, 9, 2, 1.0F), 0x21);
    EXPECT_EQ(Interface_is_Open(link), 1);
}

// The console goes on to the open when settings are refused: it must not open with those of before.
TEST_F(PortTest, SettingsThatCannotBeAre0x21AndKeepThePortClosed) {
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(configure(0, 8, 2, 1.0F), 0x21);
    EXPECT_EQ(configure(-9600, 8, 2, 1.0F), 0x21);
    EXPECT_EQ(configure(9600, 4, 2, 1.0F), 0x21);
    EXPECT_EQ(configure(9600, 9, 2, 1.0F), 0x21);
    EXPECT_EQ(configure(9600, 8, -1, 1.0F), 0x21);
    EXPECT_EQ(configure(9600, 8, 3, 1.0F), 0x21);
    EXPECT_EQ(configure(9600, 8, 2, 0.5F), 0x21);
    EXPECT_EQ(Interface_Open(link), 0x21);
    EXPECT_EQ(configure(9600, 8, 2, 1.0F), 0);
    EXPECT_EQ(Interface_Open(link), 0);
}

TEST_F(PortTest, ALineWithoutControlLinesSaysSoAndStaysUsable) {
    EXPECT_EQ(ZVBL_SetDtr(link, 1), 4);
    EXPECT_EQ(ZVBL_SetRts(link, 0), 4);
    EXPECT_EQ(play({{"D4 2B", "79"}}, [&] { return ZVBL_ResetMCU(link); }), 0);
}

TEST_F(PortTest, ALinkKeepsItsTypeWhileItIsOpen) {
    TARGET_SetComIntType(2);
    EXPECT_EQ(configure(57600, 8, 2, 1.0F), 0);
    EXPECT_EQ(Interface_Open(link), 0);
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(configure(57600, 8, 2, 1.0F), 0);
    EXPECT_EQ(Interface_Open(link), 3);
}

// At 300 baud the last byte of this packet leaves 367 ms after the first.
TEST_F(PortTest, TheTimeThatBytesTakeOnTheLineIsNoPartOfTheTimeout) {
    ASSERT_EQ(configure(300, 8, 2, 1.0F), 0);
    ASSERT_EQ(SetTimeOut(link, 150), 0);
    BYTE data[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(play({{"31 CE", "79"}, {"20 00 00 00 20", "79"}, {"07 01 02 03 04 05 06 07 08 0F", "79", 250}},
                   [&] { return ZVBL_DNLOAD(link, 0x20000000, data, 8, 0); }),
              0);
}

TEST_F(PortTest, TwoLinksDoNotDisturbEachOther) {
    Pty secondPty;
    HANDLE second = nullptr;
    ASSERT_EQ(SetCOMSettings(&second, 0, secondPty.path().c_str(), 9600, 8, 2, 1.0F), 0);
    ASSERT_EQ(Interface_Open(second), 0);
    ASSERT_NE(second, link);
    EXPECT_EQ(SetPaketSize(second, 4), 0);
    EXPECT_EQ(SetTimeOut(second, 20), 0);
    EXPECT_EQ(line().c_ospeed, unsigned{baud});

    TARGET_SetComIntType(2); // both keep the type that they were made with
    ScriptedChip chip(secondPty, {{"11 EE", "79"}, {"20 00 00 00 20", "79"}, {"03 FC", "79 01 02 03 04"}});
    BYTE data[8] = {}, other[4] = {};
    EXPECT_EQ(play({{"11 EE", "79"}, {"20 00 00 00 20", "79", 30}, {"07 F8", "79 08 07 06 05 04 03 02 01"}},
                   [&] { return ZVBL_UPLOAD(link, 0x20000000, data, 8); }),
              0);
    EXPECT_EQ(ZVBL_UPLOAD(second, 0x20000000, other, 4), 0);
    EXPECT_EQ(chip.finish(), "");
    EXPECT_EQ(data[0], 8);
    EXPECT_EQ(other[3], 4);
    EXPECT_EQ(Interface_Close(second), 0);
    EXPECT_EQ(Interface_is_Open(link), 1);
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_Open(link), 0);
}

} // namespace
