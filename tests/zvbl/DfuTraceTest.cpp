// The trace of USB DFU.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/stat.h>

#include "libs/zvbl/Timing.h"
#include "tests/zvbl/DfuFixture.h"
#include "tests/zvbl/TraceText.h"

using namespace dfu;

namespace {

class DfuTraceTest : public DfuFixture {
protected:
    void SetUp() override {
        char name[] = "/tmp/zvbl-dfu-trace-XXXXXX";
        directory = mkdtemp(name);
        chmod(directory.c_str(), 0755);
        // Whoever this process is, it may write there.
        std::ofstream(directory / "trace").close();
        chmod((directory / "trace").c_str(), 0666);
        TARGET_SetComIntType(1);
        setenv("ZVBL_TRACE", (directory / "trace").c_str(), 1);
    }
    void TearDown() override {
        unsetenv("ZVBL_TRACE");
        DfuFixture::TearDown();
        std::filesystem::remove_all(directory);
    }
    // The lines without time.
    std::string lines() {
        std::ifstream file(directory / "trace");
        std::string all, time, rest;
        while (file >> time && std::getline(file, rest))
            if (rest.find(" # run of ") == std::string::npos)
                all += rest.substr(1) + "\n";
        return all;
    }
    std::filesystem::path directory;
};

TEST_F(DfuTraceTest, SetupPacketsStatesAndStatusValues) {
    UsbDevice &first = scene.add(at("1-1", 4, "0123"));
    ASSERT_EQ(list(), 1);
    ASSERT_EQ(Interface_Open(link), 0);
    first.play(UsbScript{{getState, "05"},
                         {abortRequest, ""},
                         {getState, "02"},
                         {"21 01 00 00 00 00 04 00 44 FF FE 01", ""},
                         {getStatus, "00 05 00 00 04 00"}} +
               failed("04") + UsbScript{{"21 01 00 00 00 00 01 00 D4", usbWords::gone}});
    EXPECT_EQ(ZVBL_ERASE(link, 0xFFFE, nullptr, 0), 0x14);
    EXPECT_EQ(ZVBL_ResetMCU(link), 4);
    EXPECT_EQ(first.finish(), "");
    ASSERT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(lines(), "dfu # device 0: usb 1-1 serial 0123 ZV32 Bootloader\n"
                       "dfu0 # open usb 1-1 serial 0123 ZV32 Bootloader, wTransferSize 4096\n"
                       "dfu0 # getting in step\n"
                       "dfu0 > A1 05 00 00 00 00 01 00\n"
                       "dfu0 < 05\n"
                       "dfu0 # dfuDNLOAD-IDLE\n"
                       "dfu0 > 21 06 00 00 00 00 00 00\n"
                       "dfu0 > A1 05 00 00 00 00 01 00\n"
                       "dfu0 < 02\n"
                       "dfu0 # dfuIDLE\n"
                       "dfu0 > 21 01 00 00 00 00 04 00 44 FF FE 01\n"
                       "dfu0 > A1 03 00 00 00 00 06 00\n"
                       "dfu0 < 00 05 00 00 04 00\n"
                       "dfu0 # dfuDNBUSY, ask again in 5 ms\n"
                       "dfu0 > A1 03 00 00 00 00 06 00\n"
                       "dfu0 < 04 00 00 00 0A 00\n"
                       "dfu0 # dfuERROR, errERASE\n"
                       "dfu0 > 21 04 00 00 00 00 00 00\n"
                       "dfu0 > 21 01 00 00 00 00 01 00 D4\n"
                       "dfu0 # the device is gone\n"
                       "dfu0 # closed\n");
}

TEST_F(DfuTraceTest, APollTimeHasThreeBytes) {
    UsbDevice &only = scene.add(at("1-1", 4));
    zvbl::Timing timing;
    timing.longestPoll = std::chrono::milliseconds(1);
    zvbl::setTiming(timing);
    ASSERT_EQ(list(), 1);
    ASSERT_EQ(Interface_Open(link), 0);
    only.play(inStep + UsbScript{{"21 01 00 00 00 00 01 00 73", ""},
                                 {getStatus, "00 03 02 01 04 00"},
                                 {getStatus, isDownloadIdle, 1}});
    EXPECT_EQ(ZVBL_ERASEPROGRAM_PERM_UNPROTECT(link), 0);
    EXPECT_EQ(only.finish(), "");
    zvbl::setTiming({});
    EXPECT_NE(lines().find("# dfuDNBUSY, ask again in 66051 ms\n"), std::string::npos) << lines();
}

TEST_F(DfuTraceTest, OfDataOnlyTheLengthCanBeTold) {
    setenv("ZVBL_TRACE_DATA", "no", 1);
    UsbDevice &only = scene.add(at("1-1", 4));
    ASSERT_EQ(list(), 1);
    ASSERT_EQ(Interface_Open(link), 0);
    only.play(inStep + done("21 01 00 00 00 00 05 00 21 00 10 00 20") + done("21 01 02 00 00 00 03 00 AA BB CC"));
    BYTE data[] = {0xAA, 0xBB, 0xCC};
    EXPECT_EQ(ZVBL_DNLOAD(link, 0x20001000, data, 3, 0), 0);
    EXPECT_EQ(only.finish(), "");
    unsetenv("ZVBL_TRACE_DATA");
    const std::string status = "dfu0 > 8 bytes\ndfu0 < 6 bytes\n";
    const std::string taken = status + "dfu0 # dfuDNBUSY, ask again in 1 ms\n" + status + "dfu0 # dfuDNLOAD-IDLE\n";
    EXPECT_EQ(lines(), "dfu # device 0: usb 1-1 ZV32 Bootloader\n"
                       "dfu0 # open usb 1-1 ZV32 Bootloader, wTransferSize 4096\n"
                       "dfu0 # getting in step\n"
                       "dfu0 > A1 05 00 00 00 00 01 00\n"
                       "dfu0 < 1 bytes\n"
                       "dfu0 # dfuIDLE\n"
                       "dfu0 > 13 bytes\n" +
                           taken + "dfu0 > 11 bytes\n" + taken);
}

TEST_F(DfuTraceTest, WhatIsPassedOverIsTold) {
    scene.add(at("1-1", 2, "0123"));
    scene.add(at("1-2", 3, "9999"));
    setenv("ZVBL_DFU", "1-2", 1);
    EXPECT_EQ(list(), 1);
    unsetenv("ZVBL_DFU");
    EXPECT_EQ(lines(), "dfu # passed over: usb 1-1 serial 0123 ZV32 Bootloader\n"
                       "dfu # device 0: usb 1-2 serial 9999 ZV32 Bootloader\n");
}

TEST_F(DfuTraceTest, NoDeviceAndNoPermissionAreToldApart) {
    const UsbDevice &forbidden = scene.add(at("1-1", 2, "0123"));
    {
        const Forbidden now(scene, forbidden);
        EXPECT_EQ(list(), 1);
        EXPECT_EQ(Interface_Open(link), 3);
    }
    UsbDeviceFacts held = at("1-2", 3);
    held.heldByAnother = true;
    scene.add(held);
    ASSERT_EQ(list(), 2);
    EXPECT_EQ(Interface_Open(numbered(1)), 3);
    EXPECT_EQ(lines(), "dfu # device 0: usb 1-1 cannot be opened: Permission denied\n"
                       "dfu0 # cannot open: Permission denied\n"
                       "dfu # device 0: usb 1-1 serial 0123 ZV32 Bootloader\n"
                       "dfu # device 1: usb 1-2 ZV32 Bootloader\n"
                       "dfu1 # cannot open: Device or resource busy\n");
}

TEST_F(DfuTraceTest, NoDevice) {
    UsbDevice &only = scene.add(at("1-1", 2, "0123"));
    ASSERT_EQ(list(), 1);
    ASSERT_EQ(Interface_Open(link), 0);
    ASSERT_EQ(Interface_Close(link), 0);
    only.facts.protocol = 1; // it runs its own program now
    only.plugInAgain();
    EXPECT_EQ(list(), 0);
    EXPECT_EQ(Interface_Open(link), 3);
    EXPECT_EQ(lines(), "dfu # device 0: usb 1-1 serial 0123 ZV32 Bootloader\n"
                       "dfu0 # open usb 1-1 serial 0123 ZV32 Bootloader, wTransferSize 4096\n"
                       "dfu0 # closed\n"
                       "dfu # no device\n"
                       "dfu0 # cannot open: no device has the number 0\n");
}

TEST_F(DfuTraceTest, ADeviceThatIsNotBack) {
    UsbDevice &only = scene.add(at("1-1", 2, "0123"));
    ASSERT_EQ(list(), 1);
    only.unplug();
    EXPECT_EQ(Interface_Open(link), 3);
    only.facts.serial = "9999";
    only.plugInAgain();
    EXPECT_EQ(Interface_Open(link), 3);
    EXPECT_EQ(lines(), "dfu # device 0: usb 1-1 serial 0123 ZV32 Bootloader\n"
                       "dfu0 # cannot open: usb 1-1 is not there\n"
                       "dfu0 # cannot open: usb 1-1 is another device now\n");
}

TEST_F(DfuTraceTest, StringsAreWrittenAsTheyMayBeShown) {
    UsbDeviceFacts facts = at("1-1", 4, "01\n9 dfu # closed");
    facts.name = "A\x1B[2J";
    scene.add(facts);
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(lines(), "dfu # device 0: usb 1-1 serial 01\\x0A9 dfu # closed A\\x1B[2J\n");
    EXPECT_STREQ(info.deviceInfo[0], "usb 1-1 serial 01\\x0A9 dfu # closed A\\x1B[2J");
}

} // namespace
