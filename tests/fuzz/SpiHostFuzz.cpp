// The simulated chip on an SPI bus, with a host that sends anything.

#include "tests/fuzz/SimHost.h"
#include "tests/sim/MessageRig.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    sim::SpiRig rig(fuzz::chipOf(input.byte()));
    while (!input.empty()) {
        fuzz::make(fuzz::pauseOf(input.byte()), rig, [&] { rig.protocol.reset(rig.now); });
        const sim::Bytes out = input.bytes(input.byte());
        fuzz::require(rig.message(out).size() == out.size(), "as many bytes come as go");
    }
    return 0;
}
