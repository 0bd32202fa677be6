// Which device a number means: the handle of a link on USB DFU.

#include <functional>

#include "tests/zvbl/DfuFixture.h"

using namespace dfu;

namespace {

const std::string resetCommand = "21 01 00 00 00 00 01 00 D4";

class DfuNumbersTest : public DfuFixture {
protected:
    std::string row(int number) { return info.deviceInfo[number]; }

    // A command that shows which device a link leads to.
    int remap(HANDLE h, UsbDevice &expected) {
        expected.play(inStep + done("21 01 00 00 00 00 03 00 B7 01 FE"));
        const int status = ZVBL_SPIMREMAP(h, 1);
        EXPECT_EQ(expected.finish(), "");
        return status;
    }
    int reset() {
        return play(inStep + done(resetCommand), [&] { return ZVBL_ResetMCU(link); });
    }
};

TEST_F(DfuNumbersTest, EachNumberIsADeviceOfItsOwn) {
    UsbDevice &second = scene.add(at("1-2", 60, "0124"));
    EXPECT_EQ(Interface_Open(numbered(1)), 3); // not in the list yet
    ASSERT_EQ(list(), 2);
    ASSERT_EQ(Interface_Open(numbered(1)), 0);
    EXPECT_EQ(Interface_is_Open(numbered(0)), 1);
    EXPECT_EQ(remap(numbered(1), second), 0);
    EXPECT_EQ(remap(numbered(0), *device), 0);
    EXPECT_EQ(Interface_Close(numbered(1)), 0);
    EXPECT_EQ(Interface_Close(numbered(1)), 1);
    EXPECT_EQ(Interface_is_Open(numbered(0)), 1);
}

TEST_F(DfuNumbersTest, ClosingAndOpeningNeedsNoNewList) {
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_is_Open(link), 0);
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(remap(link, *device), 0);
}

TEST_F(DfuNumbersTest, WordsThatAreNoDevice) {
    EXPECT_EQ(Interface_Open(numbered(57)), 3);
    EXPECT_EQ(Interface_Open(numbered(5000)), 3);
    EXPECT_EQ(Interface_Close(numbered(57)), 1);
    EXPECT_EQ(SetTimeOut(numbered(5000), 100), 1);
    HANDLE word = numbered(5000);
    EXPECT_EQ(SetCOMSettings(&word, 0, "", 115200, 8, 2, 1.0F), 0x21);
    TARGET_SetComIntType(0); // then no small word is a link
    EXPECT_EQ(Interface_is_Open(link), 0);
    EXPECT_EQ(ZVBL_ResetMCU(link), 1);
    TARGET_SetComIntType(1);
    EXPECT_EQ(Interface_is_Open(link), 1);
}

TEST_F(DfuNumbersTest, SettingsOfALineChangeNothing) {
    scene.add(at("1-2", 60, "0124"));
    ASSERT_EQ(list(), 2);
    HANDLE word = numbered(1);
    EXPECT_EQ(SetCOMSettings(&word, 7, "ttyUSB0", 9600, 8, 2, 1.0F), 0);
    EXPECT_EQ(word, numbered(1));
    EXPECT_EQ(Interface_Open(word), 0);
}

// A link of its own, made with settings: the port number is that of the device.
TEST_F(DfuNumbersTest, ALinkThatWasMadeWithSettings) {
    UsbDevice &second = scene.add(at("1-2", 60, "0124"));
    ASSERT_EQ(list(), 2);
    HANDLE made = nullptr;
    ASSERT_EQ(SetCOMSettings(&made, 1, nullptr, 115200, 8, 2, 1.0F), 0);
    ASSERT_EQ(Interface_Open(made), 0);
    EXPECT_EQ(remap(made, second), 0);
    EXPECT_EQ(SetCOMSettings(&made, 99, nullptr, 115200, 8, 2, 1.0F), 0x21);
    EXPECT_EQ(SetCOMSettings(&made, -1, nullptr, 115200, 8, 2, 1.0F), 0x21);
    EXPECT_EQ(Interface_Close(made), 0);
    EXPECT_EQ(Interface_Open(made), 0x21);
}

TEST_F(DfuNumbersTest, AnotherDeviceAtThePlaceOfALostOneIsNotOpenedWithoutANewList) {
    EXPECT_EQ(Interface_Close(link), 0);
    device->facts.serial = "9999";
    device->plugInAgain();
    EXPECT_EQ(Interface_Open(link), 3);
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(Interface_Open(link), 0);
}

TEST_F(DfuNumbersTest, ADeviceComesBackFromAReset) {
    EXPECT_EQ(reset(), 0);
    EXPECT_EQ(Interface_Close(link), 0);
    device->unplug();
    EXPECT_EQ(list(), 0);
    EXPECT_EQ(Interface_Open(link), 3);
    device->plugInAgain();
    EXPECT_EQ(list(), 1);
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(remap(link, *device), 0);
}

TEST_F(DfuNumbersTest, AnotherDeviceNeverTakesThePlaceOfOneThatRestarts) {
    UsbDevice &second = scene.add(at("1-2", 60, "0124"));
    ASSERT_EQ(list(), 2);
    const struct {
        const char *name;
        UsbScript script;
        std::function<int()> call;
        int status;
    } rows[] = {
        {"reset", done(resetCommand), [&] { return ZVBL_ResetMCU(link); }, 0},
        {"go",
         done("21 01 00 00 00 00 05 00 21 00 00 00 08") +
             UsbScript{{"21 01 02 00 00 00 00 00", ""}, {getStatus, isManifest}},
         [&] { return ZVBL_GO(link, 0x08000000); }, 0},
        {"lost answer", {{resetCommand, usbWords::gone}}, [&] { return ZVBL_ResetMCU(link); }, 4},
        {"access protection on", done("21 01 00 00 00 00 01 00 82"), [&] { return ZVBL_ACCESS_PROTECT(link); }, 0},
        {"access protection at a level", done("21 01 00 00 00 00 03 00 84 01 FE"),
         [&] { return ZVBL_ACCESS_PROTECT_LEVEL(link, 1); }, 0},
        {"access protection off", done("21 01 00 00 00 00 01 00 92"), [&] { return ZVBL_ACCESS_PERM_UNPROTECT(link); },
         0},
        {"sector protection on", done("21 01 00 00 00 00 04 00 63 00 05 05"),
         [&] {
             BYTE bit = 5;
             return ZVBL_ERASEPROGRAM_PROTECT(link, 1, &bit);
         },
         0},
        {"sector protection off", done("21 01 00 00 00 00 01 00 73"),
         [&] { return ZVBL_ERASEPROGRAM_PERM_UNPROTECT(link); }, 0},
        {"sLib on", done("21 01 00 00 00 00 0C 00 D1 12 34 56 78 00 04 FF FF 00 07 0B"),
         [&] { return ZVBL_EnableSlib(link, 0x12345678, 4, 0xFFFF, 7); }, 0},
        {"sLib off", done("21 01 00 00 00 00 06 00 D2 12 34 56 78 08"),
         [&] { return ZVBL_DisableSlib(link, 0x12345678); }, 0},
        {"user system data", done("21 01 00 00 00 00 0A 00 E2 1F FF F8 00 18 00 00 A5 A5"),
         [&] {
             BYTE data[] = {0xA5};
             return TARGET_SetUserSystemData(link, 0x1FFFF800, data, 1);
         },
         0},
    };
    second.play({}); // nothing may be sent to it
    for (const auto &row_ : rows) {
        SCOPED_TRACE(row_.name);
        EXPECT_EQ(play(inStep + row_.script, row_.call), row_.status);
        EXPECT_EQ(Interface_Close(link), 0);
        device->unplug();
        EXPECT_EQ(list(), 1);
        EXPECT_EQ(row(0).substr(0, 7), "usb 1-2");
        EXPECT_EQ(Interface_Open(link), 3);
        EXPECT_EQ(Interface_is_Open(link), 0);
        device->plugInAgain();
        EXPECT_EQ(list(), 2);
        ASSERT_EQ(Interface_Open(link), 0);
    }
    EXPECT_EQ(remap(link, *device), 0);
    EXPECT_EQ(second.finish(), "");
}

// The list was made without it, and it was back at the open: its number stays its own until the next list.
TEST_F(DfuNumbersTest, ADeviceThatComesBackBetweenTheListAndTheOpen) {
    scene.add(at("1-2", 60, "0124"));
    ASSERT_EQ(list(), 2);
    EXPECT_EQ(reset(), 0);
    device->unplug();
    EXPECT_EQ(list(), 1);
    device->plugInAgain();
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(Interface_Close(link), 0);
    EXPECT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(remap(link, *device), 0);
}

TEST_F(DfuNumbersTest, ACommandThatIsRefusedOrResetsNothingKeepsNoNumber) {
    UsbDevice &second = scene.add(at("1-2", 60, "0124"));
    ASSERT_EQ(list(), 2);
    EXPECT_EQ(play(inStep + UsbScript{{resetCommand, ""}} + failed("0B"), [&] { return ZVBL_ResetMCU(link); }), 0x13);
    EXPECT_EQ(play(done("21 01 00 00 00 00 03 00 B7 01 FE"), [&] { return ZVBL_SPIMREMAP(link, 1); }), 0);
    device->unplug();
    ASSERT_EQ(list(), 1);
    ASSERT_EQ(Interface_Open(link), 0);
    EXPECT_EQ(remap(link, second), 0);
}

// On the other bus, and another device of the same name at its old place: it is not taken for it.
TEST_F(DfuNumbersTest, APlaceCountsAndNotTheOrder) {
    EXPECT_EQ(reset(), 0);
    device->unplug();
    UsbDevice &moved = scene.add(at("2-1", 2, "0123"));
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(Interface_Open(link), 3);
    moved.unplug();
    UsbDevice &other = scene.add(at("1-1", 77, "7777"));
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(Interface_Open(link), 3);
    other.unplug();
    device->plugInAgain();
    ASSERT_EQ(list(), 1);
    EXPECT_EQ(Interface_Open(link), 0);
}

} // namespace
