// USB DFU with a libusb whose calls fail, and devices that describe themselves oddly or answer what hardly any does.

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>

#include <gtest/gtest.h>
#include <unistd.h>

#include "libs/zvbl/framing/DfuFraming.h"
#include "libs/zvbl/framing/DfuNames.h"
#include "libs/zvbl/transport/UsbBus.h"
#include "tests/zvbl/FakeUsb.h"

namespace zvbl {
namespace {

class UsbLibraryTest : public ::testing::Test {
protected:
    void SetUp() override { fakeUsb = &usb; }
    void TearDown() override {
        EXPECT_EQ(usb.wrong, "");
        EXPECT_TRUE(usb.transfers.empty());
    }

    std::size_t targets() const {
        const UsbBus bus;
        return bus.targets().size();
    }

    // Open on the only device of the list.
    Status open(UsbPort &port) {
        std::vector<UsbRow> rows;
        EXPECT_EQ(listUsbDevices(rows), Status::ok);
        EXPECT_EQ(rows.size(), 1U);
        return port.open(settings);
    }

    FakeUsb usb;
    Trace trace{"dfu", "USB DFU"};
    LinkSettings settings{0, "dfu"};
};

TEST_F(UsbLibraryTest, WithoutUsbThereIsNothing) {
    std::vector<UsbRow> rows;
    usb.init = LIBUSB_ERROR_OTHER;
    EXPECT_EQ(listUsbDevices(rows), Status::cantOpen);
    usb.init = 0;
    usb.list = LIBUSB_ERROR_NO_MEM;
    EXPECT_EQ(listUsbDevices(rows), Status::ok);
    usb.list = 0;
    for (int *call : {&usb.describe, &usb.configure}) {
        *call = LIBUSB_ERROR_IO;
        EXPECT_EQ(listUsbDevices(rows), Status::ok);
        *call = 0;
    }
    EXPECT_TRUE(rows.empty());
    EXPECT_EQ(usb.held, 0);
}

TEST_F(UsbLibraryTest, TheTraceSaysWhyThereIsNone) {
    char name[] = "/tmp/zvbl-no-usb-XXXXXX";
    close(mkstemp(name));
    setenv("ZVBL_TRACE", name, 1);
    usb.init = LIBUSB_ERROR_NOT_SUPPORTED;
    std::vector<UsbRow> rows;
    EXPECT_EQ(listUsbDevices(rows), Status::cantOpen);
    unsetenv("ZVBL_TRACE");
    std::ifstream file(name);
    const std::string lines{std::istreambuf_iterator<char>(file), {}};
    unlink(name);
    EXPECT_NE(lines.find("# no USB: " + usbErrorText(LIBUSB_ERROR_NOT_SUPPORTED) + "\n"), std::string::npos) << lines;
}

TEST_F(UsbLibraryTest, ADeviceThatLeavesInThisMomentIsNotListed) {
    std::vector<UsbRow> rows;
    usb.open = LIBUSB_ERROR_NO_DEVICE;
    EXPECT_EQ(listUsbDevices(rows), Status::ok);
    EXPECT_TRUE(rows.empty());
    usb.open = LIBUSB_ERROR_ACCESS;
    EXPECT_EQ(listUsbDevices(rows), Status::ok);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].text, "usb 1-2 cannot be opened: Permission denied");
    EXPECT_EQ(usbErrorText(LIBUSB_ERROR_NO_DEVICE), "No such device");
}

TEST_F(UsbLibraryTest, InterfacesThatAreNone) {
    usb.configuration.bNumInterfaces = 2; // of a device that has two it is the first
    EXPECT_EQ(targets(), 1U);
    usb.configuration.bNumInterfaces = 1;
    EXPECT_EQ(targets(), 1U);
    std::uint8_t *const fields[] = {&usb.settings[0].bInterfaceClass, &usb.settings[0].bInterfaceSubClass,
                                    &usb.settings[0].bInterfaceProtocol};
    for (std::uint8_t *field : fields) {
        ++*field;
        EXPECT_EQ(targets(), 0U);
        --*field;
    }
}

TEST_F(UsbLibraryTest, FunctionalDescriptors) {
    const struct {
        Bytes bytes;
        unsigned transferSize;
    } rows[] = {
        {{9, 0x21, 3, 0, 0, 0x00, 0x04, 0x1A, 0x01}, 1024},
        {{3, 0x30, 0, 9, 0x21, 3, 0, 0, 0x00, 0x04, 0x1A, 0x01}, 1024}, // behind another one
        {{9}, 0},                                                       // cut
        {{9, 0x21, 3, 0, 0, 0x00, 0x04, 0x1A}, 0},
        {{1, 0x21, 3, 0, 0, 0x00, 0x04, 0x1A, 0x01}, 0}, // a length that is none
        {{7, 0x21, 3, 0, 0, 0x00, 0x04}, 0},             // of DFU 1.0
        {{}, 0},
    };
    for (const auto &row : rows) {
        usb.functional = row.bytes;
        const UsbBus bus;
        ASSERT_EQ(bus.targets().size(), 1U);
        EXPECT_EQ(bus.targets()[0].dfu.transferSize, row.transferSize) << row.bytes.size();
    }
}

TEST_F(UsbLibraryTest, AnotherPlaceIsAnotherDevice) {
    const UsbIdentity here{{1, {2}}, ""};
    EXPECT_TRUE(here.isThatOf({{1, {2}}, "0123"}));
    EXPECT_FALSE(here.isThatOf({{1, {3}}, ""}));
}

TEST_F(UsbLibraryTest, AnInterfaceThatCannotBeHad) {
    for (int *call : {&usb.claim, &usb.alternate}) {
        UsbPort port(trace);
        usb.interfaces[0].num_altsetting = 2;
        *call = LIBUSB_ERROR_BUSY;
        EXPECT_EQ(open(port), Status::cantOpen);
        *call = 0;
    }
    EXPECT_EQ(usb.held, 0);
}

TEST_F(UsbLibraryTest, TransfersThatFail) {
    UsbPort port(trace);
    ASSERT_EQ(open(port), Status::ok);
    usb.transfers = {{1, 0, {}, 1}};
    EXPECT_EQ(port.send(DfuRequest::download, 0, {1, 2}, std::chrono::seconds(1)), Status::noAnswer);
    usb.transfers = {{1, LIBUSB_ERROR_NO_MEM}};
    EXPECT_THROW((void)port.send(DfuRequest::download, 0, {1, 2}, std::chrono::seconds(1)), std::bad_alloc);
}

constexpr std::uint32_t flash = 0x08000000;
constexpr int timedOut = LIBUSB_ERROR_TIMEOUT;
constexpr int stalled = LIBUSB_ERROR_PIPE;
constexpr int unplugged = LIBUSB_ERROR_NO_DEVICE;
enum Request { download = 1, uploading, getStatus, clearStatus, getState, abortion };

Command write(std::uint32_t address) {
    return {wire::opWrite, {addressGroup(address), {{1, 2, 3, 4}}}};
}

UsbTransfer state(std::uint8_t now) {
    return {getState, 0, {now}};
}
UsbTransfer status(std::uint8_t state, std::uint8_t code = dfuOk) {
    return {getStatus, 0, {code, 0, 0, 0, state, 0}};
}

class DfuStatesTest : public UsbLibraryTest {
protected:
    void SetUp() override {
        UsbLibraryTest::SetUp();
        ASSERT_EQ(open(port), Status::ok);
    }
    Status transfer(const Command &command, const std::deque<UsbTransfer> &transfers) {
        Bytes reply;
        usb.transfers = transfers;
        return framing.transfer(command, reply, std::chrono::seconds(1));
    }

    UsbPort port{trace};
    Timing timing;
    DfuFraming framing{port, timing, trace};
};

TEST_F(DfuStatesTest, WhatBecomesOfAWrite) {
    const struct {
        const char *name;
        std::deque<UsbTransfer> transfers;
        Status status;
    } rows[] = {
        {"not begun yet at first",
         {state(dfuIdle),
          {download},
          status(dfuDownloadSync),
          status(dfuDownloadIdle),
          {download},
          status(dfuDownloadIdle)},
         Status::ok},
        {"its address is refused without a state of its own",
         {{download}, status(dfuDownloadIdle, 3)},
         Status::refused},
        {"stalled, and no status", {state(dfuIdle), {download, stalled}, {getStatus, timedOut}}, Status::noAnswer},
        {"stalled, and the error stays",
         {state(dfuIdle), {download, stalled}, status(dfuError, 3), {clearStatus, timedOut}},
         Status::refused},
        {"unplugged on its way to idle", {state(dfuDownloadIdle), {abortion, unplugged}}, Status::gone},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(transfer(write(flash + 0x10000), row.transfers), row.status);
        EXPECT_TRUE(usb.transfers.empty());
    }
}

TEST_F(DfuStatesTest, AnAbortThatIsRefused) {
    Command read{wire::opRead, {addressGroup(flash)}};
    read.reply.size = 4;
    ASSERT_EQ(
        transfer(read, {state(dfuIdle), {download}, status(dfuDownloadIdle), {abortion}, {uploading, 0, {1, 2, 3, 4}}}),
        Status::ok);
    EXPECT_EQ(transfer(write(flash), {{abortion, stalled}, status(dfuError, dfuErrStalledPacket), {clearStatus}}),
              Status::refusedCommand);
}

TEST_F(DfuStatesTest, AStartOfTheProgramThatWaitsForAReset) {
    EXPECT_EQ(transfer({wire::opGo, {addressGroup(flash)}},
                       {state(dfuIdle), {download}, status(dfuDownloadIdle), {download}, status(dfuManifestWaitReset)}),
              Status::ok);
}

} // namespace
} // namespace zvbl
