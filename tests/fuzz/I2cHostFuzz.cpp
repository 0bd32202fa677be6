// The simulated chip on an I2C bus, with a host that sends anything.

#include "tests/fuzz/SimHost.h"
#include "tests/sim/MessageRig.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    sim::I2cRig rig(fuzz::chipOf(input.byte()));
    while (!input.empty()) {
        fuzz::make(fuzz::pauseOf(input.byte()), rig, [&] { rig.protocol.reset(rig.now); });
        const std::uint8_t length = input.byte();
        if (input.byte() % 2 == 0) {
            rig.protocol.write(input.bytes(length), rig.now);
            continue;
        }
        const sim::I2cProtocol::Read read = rig.protocol.read(length, rig.now);
        fuzz::require(!read.acknowledged || read.bytes.size() == length, "a read brings what was asked for");
        rig.now = std::max(rig.now, read.at);
    }
    return 0;
}
