// The simulated CAN adapter and the chip on its bus, with a host that sends any characters.

#include "tests/fuzz/SimHost.h"
#include "tests/sim/CanRig.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    sim::AdapterRig rig({}, {}, false, fuzz::chipOf(input.byte()));
    while (!input.empty()) {
        fuzz::make(fuzz::pauseOf(input.byte()), rig, [&] { rig.bootloader.reset(rig.now); });
        const std::vector<std::uint8_t> characters = input.bytes(input.byte());
        const std::string text(characters.begin(), characters.end());
        const std::string answer = rig.adapter.receive(text, rig.now);
        fuzz::require(answer.empty() || answer.back() == '\r' || answer.back() == '\a', "an answer has its end");
        for (const sim::TimedFrame &timed : rig.received()) {
            const std::string line = rig.adapter.hear(timed);
            fuzz::require(line.empty() || line.back() == '\r', "a frame is a whole line");
            rig.now = std::max(rig.now, timed.at);
        }
    }
    return 0;
}
