// The simulated chip on a CAN bus, with a host that sends any frames at any speed.

#include "tests/fuzz/SimHost.h"
#include "tests/sim/CanRig.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static constexpr unsigned speeds[] = {0, 125000, 250000, 500000, 1000000};
    fuzz::Input input(data, size);
    sim::CanRig rig({}, {}, false, fuzz::chipOf(input.byte()));
    while (!input.empty()) {
        const std::uint8_t kind = input.byte();
        fuzz::make(fuzz::pauseOf(kind), rig, [&] { rig.bootloader.reset(rig.now); });
        sim::CanFrame frame;
        frame.extended = (kind & 0xC0) == 0x40;
        frame.remote = (kind & 0xC0) == 0x80;
        frame.id = frame.extended ? input.word() << 8 | input.byte() : input.byte();
        frame.data = input.bytes(kind % 9);
        rig.speed = speeds[(kind >> 4) % std::size(speeds)];
        rig.send(frame);
        for (const sim::TimedFrame &timed : rig.received()) {
            fuzz::require(timed.frame.data.size() <= 8 && timed.frame.id <= 0x7FF, "the chip sends whole frames");
            rig.now = std::max(rig.now, timed.at);
        }
    }
    return 0;
}
