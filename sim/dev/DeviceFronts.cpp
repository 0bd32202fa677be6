#include "sim/dev/DeviceFronts.h"

#include "sim/dev/DfuFront.h"
#include "sim/dev/I2cFront.h"
#include "sim/dev/SpiFront.h"
#include "sim/dev/TtyFront.h"

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
