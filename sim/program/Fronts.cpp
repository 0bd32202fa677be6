#include "sim/program/Fronts.h"

#include "sim/ports/can/CanFront.h"
#include "sim/ports/pty/SlcanFront.h"
#include "sim/ports/pty/UsartFront.h"
#include "sim/ports/usb/VhciFronts.h"

namespace sim {

namespace {
constexpr char deviceNodes[] = "zv32-sim-dev";
}

const FrontTable &simFronts() {
    static const FrontTable rows = {
        {"usart", "PATH", nullptr, serveUsart},
        {"slcan", "PATH", nullptr, serveSlcan},
        {"can", "INTERFACE", nullptr, serveCan, "can0"},
        {"i2c", "NODE", deviceNodes, nullptr, "i2c-1"},
        {"spi", "NODE", deviceNodes, nullptr, "spidev0.0"},
        {"dfu", nullptr, deviceNodes, nullptr, nullptr, true},
        {"tty", "NODE", deviceNodes, nullptr, "ttyUSB0", false, true},
        {"vhci-dfu", nullptr, nullptr, serveVhciDfu},
        {"vhci-acm", nullptr, nullptr, serveVhciAcm, nullptr, false, true},
        {"vhci-i2c", nullptr, nullptr, serveVhciI2c},
    };
    return rows;
}

} // namespace sim
