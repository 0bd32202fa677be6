#include "sim/ports/usb/VhciFronts.h"

#include "sim/links/usb/AcmDevice.h"
#include "sim/links/usb/DfuDevice.h"
#include "sim/links/usb/I2cTinyDevice.h"
#include "sim/links/usb/UsbCable.h"
#include "sim/ports/Clock.h"
#include "sim/ports/usb/VhciFront.h"
#include "sim/program/Options.h"

namespace sim {

// The chip's own USB: /dev/bus/usb/001/002, another one behind every reset.
bool serveVhciDfu(Machine &machine, const std::string &, std::string &error) {
    DfuDevice chip(machine.chip, machine.faults, machine.log);
    UsbCable cable(chip, machine.faults, machine.options.pace);
    return VhciFront(cable, "", machine).serve(error);
}

// A serial adapter, driven by cdc-acm: /dev/ttyACM0.
bool serveVhciAcm(Machine &machine, const std::string &, std::string &error) {
    Bootloader bootloader(machine.chip, machine.faults, machine.log);
    AcmDevice adapter(machine.options.wiring, bootloader, machine.faults, machine.log, machine.options.pace,
                      clockNow());
    return VhciFront(adapter, "*/tty/*", machine).serve(error);
}

// An I2C adapter, driven by i2c-tiny-usb: /dev/i2c-0.
bool serveVhciI2c(Machine &machine, const std::string &, std::string &error) {
    Bootloader bootloader(machine.chip, machine.faults, machine.log, &i2cCommands());
    I2cTinyDevice adapter(bootloader, machine.faults, machine.options.pace);
    return VhciFront(adapter, "*/i2c-*/i2c-dev/*", machine).serve(error);
}

} // namespace sim
