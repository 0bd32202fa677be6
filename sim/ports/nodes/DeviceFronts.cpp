#include "sim/ports/nodes/DeviceFronts.h"

#include "sim/ports/nodes/DfuFront.h"
#include "sim/ports/nodes/I2cFront.h"
#include "sim/ports/nodes/SpiFront.h"
#include "sim/ports/nodes/TtyFront.h"

namespace sim {

const FrontTable &deviceFronts() {
    static const FrontTable rows = {
        {"i2c", "NODE", nullptr, serveI2c, "i2c-1"},
        {"dfu", nullptr, nullptr, serveDfu, nullptr, true},
        {"spi", "NODE", nullptr, serveSpi, "spidev0.0"},
        {"tty", "NODE", nullptr, serveTty, "ttyUSB0", false, true},
    };
    return rows;
}

} // namespace sim
