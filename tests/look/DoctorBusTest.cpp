// Causes of I2C, SPI, CAN and USB, and the list of all ports.
#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>
#include <linux/can/error.h>
#include <linux/i2c.h>

#include "look/doctor/BusChecks.h"
#include "look/doctor/CanChecks.h"
#include "look/doctor/Examine.h"
#include "look/doctor/UsbChecks.h"
#include "tests/look/DoctorPlace.h"

namespace {

const Person ann{"ann", 1000, {1000}, {1000}};

I2cBus busWhere(std::function<int(unsigned)> read, long functions = I2C_FUNC_I2C) {
    return {[functions] { return functions; }, std::move(read)};
}

Diagnosis lookAtI2c(const I2cBus &bus, const FakeMachine &fake) {
    Diagnosis diagnosis;
    const bool isFine = checkI2c("1", bus, fake.machine(), diagnosis);
    EXPECT_EQ(isFine, diagnosis.isHealthy());
    return diagnosis;
}

std::string measured(const Diagnosis &diagnosis) {
    return diagnosis.checks().empty() ? "nothing" : diagnosis.checks().back().measured;
}

TEST(DoctorI2c, BootloaderAnswersAtItsAddress) {
    const FakeMachine fake;
    const auto bus = busWhere([](unsigned address) { return address == 0x3C || address == 0x50 ? 0 : ENXIO; });
    const Diagnosis diagnosis = lookAtI2c(bus, fake);
    EXPECT_TRUE(diagnosis.isHealthy());
    EXPECT_EQ(measured(diagnosis), "3c answers; all that do: 3c 50");
}

TEST(DoctorI2c, NothingAtTheAddress) {
    const FakeMachine fake;
    const auto bus = busWhere([](unsigned address) { return address == 0x50 ? 0 : ENXIO; });
    EXPECT_TRUE(lookAtI2c(bus, fake).has(Cause::nothingAtAddress));
    EXPECT_EQ(measured(lookAtI2c(bus, fake)), "nothing at 3c; what answers: 50");
    EXPECT_EQ(measured(lookAtI2c(busWhere([](unsigned) { return EREMOTEIO; }), fake)),
              "nothing at 3c; no address answers");
}

TEST(DoctorI2c, AddressesOfDriversAreNotAsked) {
    const FakeMachine fake;
    fake.link("/sys/bus/i2c/devices/1-0050/driver", "/sys/bus/i2c/drivers/at24");
    const auto bus = busWhere([](unsigned address) {
        EXPECT_NE(address, 0x50U);
        return address == 0x3C ? 0 : ENXIO;
    });
    EXPECT_EQ(measured(lookAtI2c(bus, fake)), "3c answers; all that do: 3c");
}

TEST(DoctorI2c, DriverHasTheAddress) {
    const FakeMachine fake;
    fake.link("/sys/bus/i2c/devices/1-003c/driver", "/sys/bus/i2c/drivers/ssd1307fb");
    const Diagnosis diagnosis = lookAtI2c(busWhere([](unsigned) { return 0; }), fake);
    EXPECT_TRUE(diagnosis.has(Cause::addressTaken));
    EXPECT_EQ(diagnosis.first()->cure, "echo 1-003c > /sys/bus/i2c/drivers/ssd1307fb/unbind");
}

TEST(DoctorI2c, LineOfTheBusIsHeld) {
    const FakeMachine fake;
    for (const int error : {ETIMEDOUT, EBUSY, EAGAIN})
        EXPECT_TRUE(lookAtI2c(busWhere([error](unsigned) { return error; }), fake).has(Cause::busStuck));
}

TEST(DoctorI2c, AdapterOfShortMessages) {
    const FakeMachine fake;
    const auto bus = busWhere([](unsigned) { return 0; }, I2C_FUNC_SMBUS_BYTE);
    EXPECT_TRUE(lookAtI2c(bus, fake).has(Cause::smbusOnly));
}

TEST(DoctorI2c, BusThatIsNone) {
    const FakeMachine fake;
    EXPECT_TRUE(lookAtI2c(i2cBusAt("/dev/null"), fake).has(Cause::gone));
}

TEST(DoctorI2c, ModuleOfTheNodesIsMissing) {
    const FakeMachine fake;
    fake.file("/sys/bus/i2c/devices/i2c-1/name", "adapter\n");
    const Diagnosis missing = examine(portOf("i2c-1", fake.machine()), {fake.machine(), ann, {}, true});
    EXPECT_TRUE(missing.has(Cause::moduleMissing));
    EXPECT_EQ(missing.first()->cure,
              "modprobe i2c-dev; for every start: echo i2c-dev > /etc/modules-load.d/i2c-dev.conf");
    fake.file("/sys/class/i2c-dev/i2c-1/name", "adapter\n");
    const Diagnosis there = examine(portOf("i2c-1", fake.machine()), {fake.machine(), ann, {}, true});
    EXPECT_FALSE(there.has(Cause::moduleMissing));
    EXPECT_TRUE(there.has(Cause::noPort));
}

TEST(DoctorSpi, ChipSelectWithoutADriver) {
    const FakeMachine fake;
    fake.file("/sys/bus/spi/devices/spi0.1/modalias", "spi:zv32\n");
    for (const char *name : {"spi0.1", "spidev0.1"}) {
        const Diagnosis diagnosis = examine(portOf(name, fake.machine()), {fake.machine(), ann, {}, true});
        EXPECT_TRUE(diagnosis.has(Cause::spiUnbound)) << name;
        EXPECT_EQ(diagnosis.first()->cure, "echo spidev > /sys/bus/spi/devices/spi0.1/driver_override; echo spi0.1 > "
                                           "/sys/bus/spi/drivers/spidev/bind");
    }
    fake.link("/sys/bus/spi/devices/spi0.1/driver", "/sys/bus/spi/drivers/spidev");
    EXPECT_FALSE(examine(portOf("spi0.1", fake.machine()), {fake.machine(), ann, {}, true}).has(Cause::spiUnbound));
}

Diagnosis judged(const CanInterface &interface) {
    Diagnosis diagnosis;
    const bool isFine = judgeInterface("can0", interface, diagnosis);
    EXPECT_EQ(isFine, diagnosis.isHealthy());
    return diagnosis;
}

TEST(DoctorCan, StatesOfTheInterface) {
    EXPECT_TRUE(judged({EAFNOSUPPORT, 0, false, false}).has(Cause::canMissing));
    EXPECT_TRUE(judged({0, ENODEV, false, false}).has(Cause::noPort));
    EXPECT_TRUE(judged({0, 0, false, false}).has(Cause::canDown));
    EXPECT_EQ(judged({0, 0, false, false}).first()->cure, "ip link set can0 up type can bitrate 250000");
    EXPECT_TRUE(judged({0, 0, true, false}).has(Cause::canBusOff));
    EXPECT_TRUE(judged({0, 0, true, true}).isHealthy());
}

Cause silenceBy(canid_t flag, unsigned detail) {
    can_frame error{};
    error.can_id = CAN_ERR_FLAG | flag;
    error.data[1] = static_cast<__u8>(detail);
    Diagnosis diagnosis;
    judgeSilence("can0", {error}, diagnosis);
    return diagnosis.first()->row->cause;
}

TEST(DoctorCan, WhatTheControllerTells) {
    EXPECT_EQ(silenceBy(CAN_ERR_ACK, 0), Cause::canNotAcknowledged);
    EXPECT_EQ(silenceBy(CAN_ERR_CRTL, CAN_ERR_CRTL_TX_PASSIVE), Cause::canNotAcknowledged);
    EXPECT_EQ(silenceBy(CAN_ERR_TX_TIMEOUT, 0), Cause::canNotAcknowledged);
    EXPECT_EQ(silenceBy(CAN_ERR_BUSOFF, 0), Cause::canBusOff);
    EXPECT_EQ(silenceBy(CAN_ERR_CRTL, CAN_ERR_CRTL_RX_OVERFLOW), Cause::silence);
}

// A chip in its USB bootloader, with the node of its device as a file.
class DoctorUsb : public testing::Test {
protected:
    DoctorUsb() {
        m_fake.file(m_device + "/idVendor", "1209\n");
        m_fake.file(m_device + "/idProduct", "0001\n");
        m_fake.file(m_device + "/busnum", "1\n");
        m_fake.file(m_device + "/devnum", "4\n");
        m_fake.file(m_device + ":1.0/bInterfaceClass", "fe\n");
        m_fake.file(m_device + ":1.0/bInterfaceSubClass", "01\n");
        m_fake.file("/dev/bus/usb/001/004", "");
    }
    Diagnosis look(const Person &person = Person::self()) const {
        Diagnosis diagnosis;
        const bool isFine = checkUsb("1-2", m_fake.machine(), person, diagnosis);
        EXPECT_EQ(isFine, diagnosis.isHealthy());
        return diagnosis;
    }

    const FakeMachine m_fake;
    const std::string m_device = "/sys/bus/usb/devices/1-2";
};

TEST_F(DoctorUsb, DeviceThatMayBeOpened) {
    EXPECT_TRUE(look().isHealthy());
}

TEST_F(DoctorUsb, NodeIsMissing) {
    m_fake.file(m_device + "/devnum", "5\n");
    EXPECT_TRUE(look().has(Cause::usbNodeMissing));
}

TEST_F(DoctorUsb, SystemWasToldNotToUseIt) {
    m_fake.file(m_device + "/authorized", "0\n");
    EXPECT_EQ(look().first()->cure, "echo 1 > /sys/bus/usb/devices/1-2/authorized");
    m_fake.file(m_device + "/authorized", "1\n");
    EXPECT_FALSE(look().has(Cause::usbNotAuthorised));
}

TEST_F(DoctorUsb, DriverHasTheInterface) {
    m_fake.link(m_device + ":1.0/driver", "/sys/bus/usb/drivers/other");
    EXPECT_TRUE(look().has(Cause::usbDriver));
    EXPECT_EQ(look().first()->cure, "echo 1-2:1.0 > /sys/bus/usb/drivers/other/unbind");
}

TEST_F(DoctorUsb, ProcessThatHoldsIt) {
    const Holder holder("dfu-tool", m_fake.root() + "/dev/bus/usb/001/004");
    // The processes are those of this machine.
    std::filesystem::create_directory_symlink("/proc", m_fake.root() + "/proc");
    EXPECT_TRUE(look().has(Cause::held));
}

TEST_F(DoctorUsb, AdapterWhoseModuleIsNotThere) {
    const std::string modules = "/lib/modules/6.1.0/";
    m_fake.file("/proc/sys/kernel/osrelease", "6.1.0\n");
    m_fake.file(modules + "modules.alias", "# a comment\nalias usb:v1A86p7523d* ch341\nalias usb:v046D* hid_mouse\n");
    m_fake.file(modules + "modules.dep", "kernel/drivers/usb/serial/ch341.ko: kernel/drivers/usb/serial/usbserial.ko\n"
                                         "kernel/drivers/hid/hid-mouse.ko:\n");
    m_fake.file("/sys/bus/usb/devices/1-3:1.0/modalias", "usb:v1A86p7523d0264dc00\n");
    m_fake.file("/sys/bus/usb/devices/1-4:1.0/modalias", "usb:v046Dp1234\n");
    Diagnosis diagnosis;
    checkAdapters(m_fake.machine(), diagnosis);
    ASSERT_EQ(diagnosis.checks().size(), 1U) << "a mouse is no adapter";
    EXPECT_TRUE(diagnosis.has(Cause::adapterWithoutModule));
    EXPECT_EQ(diagnosis.first()->cure, "modprobe ch341");
    m_fake.link("/sys/bus/usb/devices/1-3:1.0/driver", "/sys/bus/usb/drivers/ch341");
    Diagnosis driven;
    checkAdapters(m_fake.machine(), driven);
    EXPECT_TRUE(driven.isHealthy());
}

TEST_F(DoctorUsb, AllPortsAreListedByKind) {
    m_fake.link("/sys/class/tty/ttyUSB0/device", "/sys/devices/a");
    m_fake.link("/sys/class/tty/ttyS3/device", "/sys/devices/b");
    m_fake.file("/sys/class/tty/ttyS3/type", "0\n"); // the board has none
    m_fake.file("/sys/class/tty/tty1/dev", "4:1\n");
    m_fake.file("/sys/bus/i2c/devices/i2c-1/name", "x\n");
    m_fake.file("/sys/class/spidev/spidev0.0/dev", "x\n");
    m_fake.link("/sys/bus/spi/devices/spi0.0/driver", "/sys/bus/spi/drivers/spidev");
    m_fake.file("/sys/class/net/can0/type", "280\n");
    m_fake.file("/sys/class/net/eth0/type", "1\n");
    std::vector<std::string> names;
    for (const Port &port : allPorts(m_fake.machine()))
        names.push_back(port.name);
    EXPECT_EQ(names, (std::vector<std::string>{"ttyUSB0", "i2c-1", "spidev0.0", "can0", "1-2"}));
}

// Looked at by somebody who is not root and owns nothing.
TEST_F(DoctorUsb, DeviceThatMayNotBeOpened) {
    ASSERT_EQ(chmod((m_fake.root() + "/dev/bus/usb/001/004").c_str(), 0), 0);
    ASSERT_EQ(chmod(m_fake.root().c_str(), 0755), 0);
    const bool isNamed = asNobody([this] { return look().has(Cause::usbNoRule); });
    EXPECT_TRUE(isNamed);
    Diagnosis diagnosis;
    diagnosis.found(Cause::usbNoRule, "no", {"1209", "0001"});
    EXPECT_EQ(diagnosis.first()->cure, "a udev rule: SUBSYSTEM==\"usb\", ATTR{idVendor}==\"1209\", "
                                       "ATTR{idProduct}==\"0001\", MODE=\"0660\", GROUP=\"plugdev\", TAG+=\"uaccess\"");
}

} // namespace
