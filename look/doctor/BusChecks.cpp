#include "look/doctor/BusChecks.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr unsigned firstAddress = 0x08;
constexpr unsigned lastAddress = 0x77;

int transfer(const std::string &path, unsigned long request, void *argument) {
    const int node = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (node < 0)
        return errno;
    const int error = ioctl(node, request, argument) < 0 ? errno : 0;
    close(node);
    return error;
}

std::string hex(unsigned address) {
    char text[3];
    std::snprintf(text, sizeof text, "%02x", address);
    return text;
}

std::string childOf(const std::string &busNumber, unsigned address) {
    return busNumber + "-00" + hex(address);
}

std::string driverOf(const Machine &machine, const std::string &child) {
    return machine.target("/sys/bus/i2c/devices/" + child + "/driver");
}

// What is neither an answer nor a missing acknowledge: a line of the bus does not move.
bool meansStuck(int error) {
    return error == ETIMEDOUT || error == EBUSY || error == EAGAIN;
}

std::string addressesThatAnswer(const std::string &busNumber, const I2cBus &bus, const Machine &machine) {
    std::string list;
    for (unsigned address = firstAddress; address <= lastAddress; ++address) {
        if (!driverOf(machine, childOf(busNumber, address)).empty())
            continue;
        const int error = bus.read(address);
        if (meansStuck(error))
            break;
        if (error == 0)
            list += (list.empty() ? "" : " ") + hex(address);
    }
    return list;
}

} // namespace

I2cBus i2cBusAt(const std::string &path) {
    I2cBus bus;
    bus.functions = [path] {
        unsigned long functions = 0;
        const int error = transfer(path, I2C_FUNCS, &functions);
        return error != 0 ? -long(error) : static_cast<long>(functions);
    };
    bus.read = [path](unsigned address) {
        __u8 byte = 0;
        i2c_msg message{static_cast<__u16>(address), I2C_M_RD, 1, &byte};
        i2c_rdwr_ioctl_data data{&message, 1};
        return transfer(path, I2C_RDWR, &data);
    };
    return bus;
}

bool checkI2c(const std::string &busNumber, const I2cBus &bus, const Machine &machine, Diagnosis &diagnosis) {
    const long functions = bus.functions();
    if (functions < 0) {
        diagnosis.found(Cause::gone, std::strerror(static_cast<int>(-functions)));
        return false;
    }
    if ((functions & I2C_FUNC_I2C) == 0) {
        diagnosis.found(Cause::smbusOnly, "the adapter speaks SMBus only, which carries 32 bytes in a message");
        return false;
    }
    const std::string child = childOf(busNumber, bootloaderAddress);
    if (const std::string driver = driverOf(machine, child); !driver.empty()) {
        diagnosis.found(Cause::addressTaken, "a driver of the kernel has 3c", {child, driver});
        return false;
    }
    const int error = bus.read(bootloaderAddress);
    if (meansStuck(error)) {
        diagnosis.found(Cause::busStuck, std::string("no transfer: ") + std::strerror(error));
        return false;
    }
    const std::string list = addressesThatAnswer(busNumber, bus, machine);
    if (error == 0)
        diagnosis.good("address", "3c answers; all that do: " + list);
    else
        diagnosis.found(Cause::nothingAtAddress,
                        "nothing at 3c; " + (list.empty() ? "no address answers" : "what answers: " + list));
    return error == 0;
}

void checkI2cModule(const std::string &name, const Machine &machine, Diagnosis &diagnosis) {
    if (machine.has("/sys/bus/i2c/devices/" + name) && !machine.has("/sys/class/i2c-dev/" + name))
        diagnosis.found(Cause::moduleMissing, "the adapter is there, and its node is not", {"i2c-dev"});
}

void checkSpiDriver(const std::string &name, const Machine &machine, Diagnosis &diagnosis) {
    const std::string device = name.rfind("spidev", 0) == 0 ? "spi" + name.substr(6) : name;
    const std::string place = "/sys/bus/spi/devices/" + device;
    if (machine.has(place) && machine.target(place + "/driver").empty())
        diagnosis.found(Cause::spiUnbound, "no driver has " + device, {place, device});
}
