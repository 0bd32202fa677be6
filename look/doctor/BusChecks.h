#pragma once

#include <functional>
#include <string>

#include "look/doctor/Cause.h"
#include "programs/machine/Machine.h"

// An I2C bus as it is asked.
struct I2cBus {
    // I2C_FUNC_... bits; negative: an errno.
    std::function<long()> functions;
    // Reads one byte from a 7-bit address, which is how an address is asked whether it is there: 0, or an errno.
    std::function<int(unsigned address)> read;
};

constexpr unsigned bootloaderAddress = 0x3C;

// The bus that stands at the node. Opened for each call.
I2cBus i2cBusAt(const std::string &path);

// Which addresses answer on the bus of that number; those that a driver of the kernel has are not asked. True where
// the bootloader's is among them.
bool checkI2c(const std::string &busNumber, const I2cBus &bus, const Machine &machine, Diagnosis &diagnosis);

// Adapters whose module is missing, and chip selects without spidev: nodes that could be there.
void checkI2cModule(const std::string &name, const Machine &machine, Diagnosis &diagnosis);
void checkSpiDriver(const std::string &name, const Machine &machine, Diagnosis &diagnosis);
