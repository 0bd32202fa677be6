#include "sim/program/NodePorts.h"

#include "sim/ports/nodes/DfuNode.h"
#include "sim/ports/nodes/I2cNode.h"
#include "sim/ports/nodes/SpiNode.h"
#include "sim/ports/nodes/TtyNode.h"

namespace sim {

const PortKinds &nodePorts() {
    static const PortKinds rows = {
        {"i2c", "NODE", nullptr, makeI2cNode, "i2c-1"},
        {"dfu", nullptr, nullptr, makeDfuNode, nullptr, true},
        {"spi", "NODE", nullptr, makeSpiNode, "spidev0.0"},
        {"tty", "NODE", nullptr, makeTtyNode, "ttyUSB0", false, true},
    };
    return rows;
}

} // namespace sim
