// The device list of USB DFU, and what of it can be opened.

#include <cstring>
#include <functional>

#include "tests/zvbl/DfuFixture.h"

namespace {

class DfuListTest : public DfuFixture {
protected:
    void SetUp() override { TARGET_SetComIntType(1); }
    std::string row(int number) { return info.deviceInfo[number]; }
};

TEST_F(DfuListTest, ARowNamesPlaceSerialNumberAndProduct) {
    scene.add(at("1-2.3", 9, "0123"));
    std::memset(&info, 0x55, sizeof info);
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(row(0), "usb 1-2.3 serial 0123 ZV32 Bootloader");
    EXPECT_EQ(vendors[0], 0x1209);
    EXPECT_EQ(products[0], 0x0001);
}

TEST_F(DfuListTest, TheOrderIsThatOfBusAndPortPath) {
    scene.add(at("2-1", 2));
    scene.add(at("1-10", 7));
    scene.add(at("1-2.4.1", 8));
    scene.add(at("1-2.3", 3));
    scene.add(at("1-2.10", 4));
    scene.add(at("1-1", 50));
    ASSERT_EQ(list(), 6);
    const char *expected[] = {"1-1", "1-2.3", "1-2.4.1", "1-2.10", "1-10", "2-1"};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(row(i), std::string("usb ") + expected[i] + " ZV32 Bootloader");
}

TEST_F(DfuListTest, OnlyOurDevicesInDfuModeCount) {
    UsbDeviceFacts foreign = at("1-1", 2), otherProduct = at("1-2", 3), runtime = at("1-3", 4);
    foreign.vendor = 0x1234;
    otherProduct.product = 0x0002;
    runtime.protocol = 1;
    scene.add(foreign);
    scene.add(otherProduct);
    scene.add(runtime);
    EXPECT_EQ(list(), 0);
    EXPECT_EQ(Interface_Open(nullptr), 3);
    scene.add(at("1-4", 5));
    EXPECT_EQ(list(), 1);
    EXPECT_EQ(row(0).substr(0, 7), "usb 1-4");
}

TEST_F(DfuListTest, ALongNameIsCutAndWhatIsNotPrintableIsANumber) {
    UsbDeviceFacts facts = at("1-1", 2, "12\n34");
    facts.name = std::string(110, 'x');
    scene.add(facts);
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(row(0), "usb 1-1 serial 12\\x0A34 " + std::string(74, 'x'));
}

TEST_F(DfuListTest, MoreThan99Devices) {
    for (int i = 0; i < 105; ++i)
        scene.add(at("1-1." + std::to_string(i + 1), i + 2));
    EXPECT_EQ(list(), 99);
    EXPECT_EQ(row(98), "usb 1-1.99 ZV32 Bootloader");
    EXPECT_EQ(Interface_Open(numbered(98)), 0);
    EXPECT_EQ(Interface_Open(numbered(99)), 3);
}

TEST_F(DfuListTest, ThePlaceOrTheSerialNumberOfOneCanBeAskedFor) {
    scene.add(at("1-1", 2, "0123"));
    scene.add(at("1-2.3", 3, "4567"));
    scene.add(at("1-2.30", 4, "1-1"));
    const std::pair<const char *, std::vector<std::string>> wanted[] = {
        {"1-2.3", {"usb 1-2.3 serial 4567 ZV32 Bootloader"}},
        {"0123", {"usb 1-1 serial 0123 ZV32 Bootloader"}},
        {"1-1", {"usb 1-1 serial 0123 ZV32 Bootloader", "usb 1-2.30 serial 1-1 ZV32 Bootloader"}},
        {"1-2", {}},
    };
    for (const auto &[name, rows] : wanted) {
        setenv("ZVBL_DFU", name, 1);
        ASSERT_EQ(list(), static_cast<int>(rows.size())) << name;
        for (std::size_t i = 0; i < rows.size(); ++i)
            EXPECT_EQ(row(static_cast<int>(i)), rows[i]);
    }
    setenv("ZVBL_DFU", "1-2.3", 1);
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(Interface_Open(nullptr), 0);
    EXPECT_EQ(Interface_Open(numbered(1)), 3);
    setenv("ZVBL_DFU", "", 1);
    EXPECT_EQ(list(), 3);
    unsetenv("ZVBL_DFU");
}

TEST_F(DfuListTest, NothingIsPluggedIn) {
    EXPECT_EQ(list(), 0);
    EXPECT_EQ(Interface_Open(nullptr), 3);
}

TEST_F(DfuListTest, ADeviceThatMayNotBeOpenedCountsAndItsRowSaysSo) {
    const UsbDevice &only = scene.add(at("1-1", 2, "0123"));
    {
        const Forbidden forbidden(scene, only);
        EXPECT_EQ(list(), 1);
        EXPECT_EQ(row(0), "usb 1-1 cannot be opened: Permission denied");
        EXPECT_EQ(Interface_Open(nullptr), 3);
        EXPECT_EQ(Interface_is_Open(nullptr), 0);
    }
    // It may be opened now, and who it is was not known.
    EXPECT_EQ(Interface_Open(nullptr), 0);
}

TEST_F(DfuListTest, ADeviceThatSaysNothingCountsToo) {
    UsbDeviceFacts facts = at("1-1", 2, "0123");
    facts.mute = true;
    scene.add(facts);
    EXPECT_LT(timeOf([&] { EXPECT_EQ(list(), 1); }).count(), 3000);
    EXPECT_EQ(row(0), "usb 1-1");
}

TEST_F(DfuListTest, TransfersOfEightBytesAreEnough) {
    UsbDeviceFacts facts = at("1-1", 2, "0123");
    facts.transferSize = 8;
    scene.add(facts);
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(Interface_Open(numbered(0)), 0);
}

TEST_F(DfuListTest, WhatCannotBeOpenedIs3) {
    const std::function<void(UsbDeviceFacts &)> changes[] = {
        [](UsbDeviceFacts &facts) { facts.heldByAnother = true; },
        [](UsbDeviceFacts &facts) { facts.functionalDescriptor = false; },
        [](UsbDeviceFacts &facts) { facts.dfuVersion = 0x0110; },
        [](UsbDeviceFacts &facts) { facts.transferSize = 0; },
        [](UsbDeviceFacts &facts) { facts.transferSize = 7; },
    };
    int number = 0;
    for (const auto &change : changes) {
        SCOPED_TRACE(number);
        UsbDeviceFacts facts = at("1-" + std::to_string(number + 1), number + 2);
        change(facts);
        scene.add(facts);
        ASSERT_EQ(list(), number + 1);
        EXPECT_EQ(Interface_Open(numbered(static_cast<std::uintptr_t>(number))), 3);
        EXPECT_EQ(ZVBL_ResetMCU(numbered(static_cast<std::uintptr_t>(number))), 1);
        ++number;
    }
}

} // namespace
