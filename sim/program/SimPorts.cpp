#include "sim/program/SimPorts.h"

#include "sim/ports/can/CanInterface.h"
#include "sim/ports/pty/SlcanTerminal.h"
#include "sim/ports/pty/UsartPort.h"
#include "sim/ports/usb/VhciPorts.h"

namespace sim {

namespace {
constexpr char deviceNodes[] = "zv32-sim-dev";
}

const PortKinds &simPorts() {
    static const PortKinds rows = {
        {"usart", "PATH", nullptr, makeUsartPort},
        {"slcan", "PATH", nullptr, makeCanPort<SlcanTerminal>},
        {"can", "INTERFACE", nullptr, makeCanPort<CanInterface>, "can0"},
        {"i2c", "NODE", deviceNodes, nullptr, "i2c-1"},
        {"spi", "NODE", deviceNodes, nullptr, "spidev0.0"},
        {"dfu", nullptr, deviceNodes, nullptr, nullptr, true},
        {"tty", "NODE", deviceNodes, nullptr, "ttyUSB0", false, true},
        {"vhci-dfu", nullptr, nullptr, makeVhciDfu},
        {"vhci-acm", nullptr, nullptr, makeVhciAcm, nullptr, false, true},
        {"vhci-i2c", nullptr, nullptr, makeVhciI2c},
    };
    return rows;
}

} // namespace sim
