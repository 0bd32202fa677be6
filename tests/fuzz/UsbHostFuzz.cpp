// The simulated chip on USB, with a host that makes any control transfers.

#include "tests/fuzz/SimHost.h"
#include "tests/sim/UsbRig.h"

namespace {

// Whole setup packets hardly ever come about by chance: the usual ones by a number.
sim::UsbSetup setupOf(fuzz::Input &input) {
    static constexpr std::uint8_t usual[][2] = {{0x21, 1}, {0xA1, 2}, {0xA1, 3}, {0x21, 4},
                                                {0xA1, 5}, {0x21, 6}, {0x80, 6}, {0x00, 9}};
    const std::uint8_t kind = input.byte();
    std::uint8_t bytes[8] = {usual[kind % 8][0], usual[kind % 8][1], input.byte(), 0, 0, 0, input.byte(), 0};
    bytes[7] = static_cast<std::uint8_t>(kind >> 3 & 7);
    if ((kind & 0xC0) == 0xC0)
        for (std::uint8_t &byte : bytes)
            byte = input.byte();
    return sim::parseSetup(bytes);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    sim::UsbRig rig(fuzz::chipOf(input.byte()));
    while (!input.empty()) {
        fuzz::make(fuzz::pauseOf(input.byte()), rig, [&] { rig.cable.pressReset(rig.now); });
        const sim::UsbSetup setup = setupOf(input);
        const sim::Bytes out = setup.towardsHost() ? sim::Bytes() : input.bytes(setup.length);
        const sim::UsbAnswer answer = rig.cable.control(setup, out, rig.now);
        fuzz::require(answer.data.size() <= setup.length, "no more comes than was asked for");
        rig.now = std::max(rig.now, answer.at);
    }
    return 0;
}
