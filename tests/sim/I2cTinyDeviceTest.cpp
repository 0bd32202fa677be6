#include "sim/links/usb/I2cTinyDevice.h"

#include <gtest/gtest.h>

#include "tests/sim/Rig.h"

namespace sim {
namespace {

class I2cTinyDeviceTest : public ::testing::Test {
protected:
    UsbAnswer ask(const std::string &setup, const std::string &out = "-") {
        return device.control(parseSetup(parseBytes(setup).data()), parseBytes(out), rig.now);
    }
    // "done", the bytes, "stall" or "silent".
    std::string control(const std::string &setup, const std::string &out = "-") {
        const UsbAnswer answer = ask(setup, out);
        if (answer.kind != UsbAnswer::Kind::done)
            return answer.kind == UsbAnswer::Kind::stall ? "stall" : "silent";
        return answer.data.empty() ? "done" : showBytes(answer.data);
    }
    std::string status() { return control("C1 03 00 00 00 00 01 00"); }

    Rig rig{"ZV32F403A_1024K", {"hangup@5:30"}};
    Bootloader bootloader{rig.chip, rig.faults, rig.log, &i2cCommands()};
    I2cTinyDevice device{bootloader, rig.faults, false};
};

const char acknowledged[] = "01";
const char notAcknowledged[] = "02";

TEST_F(I2cTinyDeviceTest, theDriverFindsItsWay) {
    EXPECT_EQ(showBytes(device.descriptors().device), "12 01 10 01 FF 00 00 08 03 04 31 C6 05 02 00 01 02 01");
    EXPECT_EQ(control("C1 00 34 12 00 00 02 00"), "34 12");       // echo
    EXPECT_EQ(control("C1 01 00 00 00 00 04 00"), "09 00 FF 0E"); // functions
    EXPECT_EQ(control("41 02 0A 00 00 00 00 00"), "done");        // delay
    EXPECT_EQ(status(), "00");
}

// Opcode and complement in one write transfer, each answer in a read transfer: GET_ID.
TEST_F(I2cTinyDeviceTest, messagesReachTheChip) {
    EXPECT_EQ(control("41 07 00 00 3C 00 02 00", "02 FD"), "done");
    EXPECT_EQ(status(), acknowledged);
    EXPECT_EQ(control("C1 07 01 00 3C 00 01 00"), "79");
    EXPECT_EQ(control("C1 07 01 00 3C 00 06 00"), "04 03 47 70 05 07");
    EXPECT_EQ(control("C1 07 01 00 3C 00 01 00"), "79");
    EXPECT_EQ(status(), acknowledged);
}

// The driver wants all the bytes that it asked for, and looks at the status then.
TEST_F(I2cTinyDeviceTest, whatNobodyAcknowledgesIsTold) {
    EXPECT_EQ(control("41 07 00 00 3D 00 00 00"), "done");
    EXPECT_EQ(status(), notAcknowledged);
    EXPECT_EQ(control("C1 07 01 00 3D 00 03 00"), "FF FF FF");
    EXPECT_EQ(status(), notAcknowledged);
    EXPECT_EQ(control("41 07 00 00 3C 00 00 00"), "done"); // a bus scan
    EXPECT_EQ(status(), acknowledged);
}

TEST_F(I2cTinyDeviceTest, aChipThatStartsDoesNotAcknowledge) {
    device.pressReset(rig.now);
    control("41 07 00 00 3C 00 00 00");
    EXPECT_EQ(status(), notAcknowledged);
    rig.now += 20 * millisecond;
    control("41 07 00 00 3C 00 00 00");
    EXPECT_EQ(status(), acknowledged);
}

TEST_F(I2cTinyDeviceTest, theDelayTellsThePace) {
    I2cTinyDevice paced(bootloader, rig.faults, true);
    const UsbSetup delay = parseSetup(parseBytes("41 02 05 00 00 00 00 00").data()); // 10 us a bit
    const UsbSetup write = parseSetup(parseBytes("41 07 00 00 3C 00 02 00").data());
    paced.control(delay, {}, rig.now);
    EXPECT_EQ(paced.control(write, {0x00, 0xFF}, rig.now).at, rig.now + 270 * microsecond);
}

TEST_F(I2cTinyDeviceTest, whatItDoesNotKnowIsStalled) {
    EXPECT_EQ(control("41 08 00 00 00 00 00 00"), "stall");
    EXPECT_EQ(control("41 07 01 00 3C 00 01 00", "00"), "stall"); // a read that brings bytes
    EXPECT_EQ(control("21 07 00 00 3C 00 00 00"), "stall");
}

TEST_F(I2cTinyDeviceTest, aHangupUnplugsTheAdapter) {
    control("41 07 00 00 3C 00 02 00", "00 FF");
    control("41 07 00 00 3C 00 02 00", "00 FF");
    EXPECT_EQ(control("41 07 00 00 3C 00 02 00", "00 FF"), "silent");
    EXPECT_FALSE(device.presence(rig.now).attached);
    EXPECT_EQ(device.nextEvent(rig.now), rig.now + 30 * millisecond);
    rig.now += 50 * millisecond;
    EXPECT_TRUE(device.presence(rig.now).attached);
    EXPECT_EQ(device.presence(rig.now).attachments, 2U);
    EXPECT_EQ(status(), "00");
    control("41 07 00 00 3C 00 02 00", "02 FD");
    EXPECT_EQ(control("C1 07 01 00 3C 00 01 00"), "79");
}

} // namespace
} // namespace sim
