#include "sim/ports/usb/VhciPorts.h"

#include "sim/links/usb/AcmDevice.h"
#include "sim/links/usb/DfuDevice.h"
#include "sim/links/usb/I2cTinyDevice.h"
#include "sim/links/usb/UsbCable.h"
#include "sim/ports/Clock.h"
#include "sim/ports/usb/VhciPort.h"

namespace sim {

namespace {

// The chip's own USB: /dev/bus/usb/001/002, another one after every reset.
struct ChipOnCable {
    explicit ChipOnCable(const Machine &machine)
        : chip(machine.chip, machine.faults, machine.log), device(chip, machine.faults, machine.pace) {}
    static constexpr char node[] = "";

    DfuDevice chip;
    UsbCable device;
};

// A serial adapter, driven by cdc-acm: /dev/ttyACM0.
struct SerialAdapter {
    explicit SerialAdapter(const Machine &machine)
        : bootloader(machine.chip, machine.faults, machine.log),
          device(machine.wiring, bootloader, machine.faults, machine.log, machine.pace, clockNow()) {}
    static constexpr char node[] = "*/tty/*";

    Bootloader bootloader;
    AcmDevice device;
};

// An I2C adapter, driven by i2c-tiny-usb: /dev/i2c-0.
struct I2cAdapter {
    explicit I2cAdapter(const Machine &machine)
        : bootloader(machine.chip, machine.faults, machine.log, &i2cCommands()),
          device(bootloader, machine.faults, machine.pace) {}
    static constexpr char node[] = "*/i2c-*/i2c-dev/*";

    Bootloader bootloader;
    I2cTinyDevice device;
};

// A port with the device that it carries.
template <class Carried>
class PortOf : private Carried, public VhciPort {
public:
    explicit PortOf(const Machine &machine) : Carried(machine), VhciPort(Carried::device, Carried::node) {}
};

} // namespace

std::unique_ptr<Port> makeVhciDfu(const Machine &machine, const std::string &, std::string &) {
    return std::make_unique<PortOf<ChipOnCable>>(machine);
}

std::unique_ptr<Port> makeVhciAcm(const Machine &machine, const std::string &, std::string &) {
    return std::make_unique<PortOf<SerialAdapter>>(machine);
}

std::unique_ptr<Port> makeVhciI2c(const Machine &machine, const std::string &, std::string &) {
    return std::make_unique<PortOf<I2cAdapter>>(machine);
}

} // namespace sim
