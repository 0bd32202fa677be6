// Emulated nodes that cannot be made, and the numbers that devices on the bus get.

#include "sim/ports/nodes/Hub.h"

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>
#include <linux/usbdevice_fs.h>
#include <poll.h>

#include "sim/ports/nodes/DfuNode.h"
#include "sim/ports/nodes/I2cNode.h"
#include "sim/ports/nodes/SpiNode.h"
#include "sim/ports/nodes/TtyNode.h"
#include "tests/sim/ControlRequest.h"
#include "tests/sim/NodeRig.h"

namespace sim {
namespace {

namespace fs = std::filesystem;

constexpr char onlyTestbed[] = "UMOCKDEV_DIR"; // the directory of the testbed that was made last

Machine machineOf(Rig &rig) {
    return {rig.chip, rig.faults, rig.log, {}, false, 0, 0, 1024 * 1024, FlashTime{}};
}

TEST(HubTest, NumbersGoRoundAndLeaveOutWhatIsTaken) {
    Hub hub;
    EXPECT_EQ(hub.take(), 2U); // for ever
    for (unsigned number = 3; number <= 127; ++number) {
        EXPECT_EQ(hub.take(), number);
        hub.give(number);
    }
    EXPECT_EQ(hub.take(), 3U);
}

TEST(HubTest, EachCallWakesThePort) {
    NodeRig board(makeDfuNode, "");
    const OpenFile file("/dev/bus/usb/001/002");
    unsigned value = 0;
    for (int turn = 0; turn < 2; ++turn) { // the first one ends a rest too
        pollfd wake{board.port->fds().front(), POLLIN, 0};
        EXPECT_EQ(poll(&wake, 1, 0), 0);
        EXPECT_EQ(file.call(USBDEVFS_GET_CAPABILITIES, &value), 0);
        EXPECT_EQ(poll(&wake, 1, 0), 1);
        EXPECT_TRUE(board.work());
    }
}

TEST(HubTest, ADeviceComesBackUnderTheNextNumber) {
    NodeRig board(makeDfuNode, "", {}, false, {}, 2);
    EXPECT_NE(board.port->takeReady(), "");
    EXPECT_TRUE(fs::exists("/dev/bus/usb/001/002"));
    EXPECT_TRUE(fs::exists("/dev/bus/usb/001/004"));
    EXPECT_EQ(board.port->due(clockNow()), std::nullopt);
    board.port->reset(clockNow());
    EXPECT_NE(board.port->due(clockNow()), std::nullopt);
    for (int turn = 0; turn < 2000 && !fs::exists("/dev/bus/usb/001/005"); ++turn) {
        EXPECT_TRUE(board.work());
        waitUntil(clockNow() + millisecond);
    }
    EXPECT_FALSE(fs::exists("/dev/bus/usb/001/002"));
    EXPECT_TRUE(fs::exists("/dev/bus/usb/001/005"));
    EXPECT_NE(board.port->takeReady(), "");
    board.port->unplug();
    EXPECT_FALSE(fs::exists("/dev/bus/usb/001/005"));
    EXPECT_FALSE(fs::exists("/dev/bus/usb/001/004"));
    board.port->unplug(); // there is nothing left to do
}

TEST(HubTest, ATerminalWithAnOddNameOrWithoutItsLink) {
    Rig rig("ZV32F421_16K");
    std::string error;
    const std::unique_ptr<Port> odd = makeTtyNode(machineOf(rig), "tty\nwhat is this?", error);
    EXPECT_FALSE(odd->plugIn(error));
    EXPECT_NE(error, "");
    const std::unique_ptr<Port> port = makeTtyNode(machineOf(rig), "ttyUSB0", error);
    const fs::path node = std::getenv(onlyTestbed) + std::string("/dev/ttyUSB0");
    fs::create_directories(node.string() + "." + std::to_string(getpid()));
    EXPECT_FALSE(port->plugIn(error));
    EXPECT_EQ(error, "cannot make the link \"" + node.string() + "\": File exists");
}

TEST(HubTest, NamesThatAreNone) {
    Rig rig("ZV32F421_16K");
    std::string error;
    EXPECT_FALSE(makeSpiNode(machineOf(rig), "spidev0", error));
    EXPECT_EQ(error, "\"spidev0\" is no SPI device: --spi takes spidevB.C");
    EXPECT_FALSE(makeI2cNode(machineOf(rig), "i2c-1x", error));
    EXPECT_EQ(error, "\"i2c-1x\" is no I2C bus: --i2c takes i2c-N");
}

TEST(HubTest, APortThatIsUnpluggedForGood) {
    NodeRig board(makeDfuNode, "", {"tx-hangup@1"});
    const OpenFile usb("/dev/bus/usb/001/002");
    ControlRequest status("A1 03 00 00 00 00 06 00 00*6");
    EXPECT_EQ(usb.call(USBDEVFS_SUBMITURB, &status.urb), 0);
    EXPECT_TRUE(board.work());
    EXPECT_TRUE(board.hungUp());
}

} // namespace
} // namespace sim
