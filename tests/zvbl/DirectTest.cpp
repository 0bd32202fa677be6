// Parts of the library by themselves, where no call of the interface gets them to do this.

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>
#include <unistd.h>

#include "libs/zvbl/Packets.h"
#include "libs/zvbl/Registry.h"
#include "libs/zvbl/Session.h"
#include "libs/zvbl/Text.h"
#include "libs/zvbl/Trace.h"
#include "libs/zvbl/transport/CanAdapter.h"
#include "libs/zvbl/transport/UsbDevices.h"
#include "link/ZVBLLIB.h"

namespace zvbl {
namespace {

// The border looks first; a link that another thread closes in that moment is closed all the same.
TEST(DirectTest, AClosedLinkDoesNothing) {
    Session session;
    std::uint8_t byte = 0;
    Capabilities capabilities;
    EXPECT_EQ(session.close(), Status::notOpen);
    EXPECT_EQ(session.setLine(ControlLine::dtr, true), Status::notOpen);
    EXPECT_EQ(session.start({}), Status::notOpen);
    EXPECT_EQ(session.setSpeed(1), Status::notOpen);
    EXPECT_EQ(session.getCapabilities(capabilities), Status::notOpen);
    EXPECT_EQ(session.upload(0x08000000, &byte, 1), Status::notOpen);
    EXPECT_EQ(session.download(0x08000000, &byte, 1, false), Status::notOpen);
    EXPECT_EQ(session.verify(0x08000000, &byte, 1, false), Status::notOpen);
}

TEST(DirectTest, WhatMemoryAnAddressIsOf) {
    EXPECT_FALSE(isFlash(0x07FFFFFF));
    EXPECT_TRUE(isFlash(0x08000000));
    EXPECT_FALSE(isFlash(0x10000000));
    EXPECT_FALSE(isRam(0x1FFFFFFF));
    EXPECT_TRUE(isRam(0x20000000));
    EXPECT_FALSE(isRam(0x40000000));
}

TEST(DirectTest, Texts) {
    EXPECT_EQ(printable("a\x7F~\x01"), "a\\x7F~\\x01");
    EXPECT_EQ(errorText(ENOENT), "No such file or directory");
    EXPECT_EQ(errorText(99999), "error 99999");
}

TEST(DirectTest, NumbersOfUsbDevices) {
    TARGET_SetComIntType(linkUsbDfu);
    HANDLE number = reinterpret_cast<HANDLE>(std::uintptr_t{98});
    EXPECT_EQ(SetCOMSettings(&number, 0, "", 0, 8, 2, 1.0F), 0x21);
    addDeviceLinks(1000); // no more than a list has rows
    EXPECT_EQ(SetCOMSettings(&number, 0, "", 0, 8, 2, 1.0F), 0);
    EXPECT_EQ(findLink(reinterpret_cast<HANDLE>(std::uintptr_t{99})), nullptr);
    TARGET_SetComIntType(linkUsart);
}

TEST(DirectTest, WhatNoUsbDeviceIs) {
    EXPECT_FALSE(usbDeviceOf(-1));
    EXPECT_FALSE(usbDeviceOf(static_cast<int>(mostUsbDevices)));
}

TEST(DirectTest, ARateThatNoAdapterHas) {
    Trace trace("tty", "CAN");
    EXPECT_EQ(CanAdapter(trace).setBitRate(12345), Status::badArgument);
}

class HiddenDataTest : public ::testing::Test {
protected:
    void SetUp() override {
        close(mkstemp(name));
        setenv("ZVBL_TRACE", name, 1);
        setenv("ZVBL_TRACE_DATA", "no", 1);
    }
    void TearDown() override {
        unsetenv("ZVBL_TRACE");
        unsetenv("ZVBL_TRACE_DATA");
        unlink(name);
    }
    // Without time, port, and the line of the run.
    std::string lines() const {
        std::ifstream file(name);
        std::string all, time, port, rest;
        while (file >> time >> port && std::getline(file, rest))
            if (rest.find("# run of") == std::string::npos)
                all += rest.substr(1) + "\n";
        return all;
    }
    char name[30] = "/tmp/zvbl-hidden-XXXXXX";
};

TEST_F(HiddenDataTest, FramesOfAPacket) {
    {
        Trace trace("can0", "CAN");
        trace.beginExchange(false, true);
        trace.sent("031 01 02 03 04 05 06 07 08 09");
        trace.sent("031 01");
        trace.sent("031 01 02");
        trace.endExchange(true);
        trace.beginExchange(true, false);
        trace.received("111 79");
        trace.received("111 76");
        trace.received("111 01 02");
        trace.received("111");
        trace.discarded("111 01 02");
        trace.endExchange(true);
        trace.received("111 01 02");
    }
    EXPECT_EQ(lines(), "> 031 9 bytes\n> 031 01\n> 031 2 bytes\n< 111 79\n< 111 76\n< 111 2 bytes\n< 111\nx not shown\n"
                       "< 111 01 02\n");
}

} // namespace
} // namespace zvbl
