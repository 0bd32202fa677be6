// The simulated chip on a serial line, with a host that sends anything.

#include "tests/fuzz/SimHost.h"

namespace {

// What a command does is the same on every link: here with every part that a chip can have.
constexpr const char *chips[] = {"ZV32L021_16K", "ZV32F415_72K", "ZV32F403_2_64K", "ZV32F422_64K"};
constexpr std::size_t externalFlash = 8192;

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::Input input(data, size);
    sim::Rig rig(chips[input.byte() % std::size(chips)], {}, {}, externalFlash);
    std::size_t sent = 0;
    std::size_t answered = 0;
    while (!input.empty()) {
        fuzz::make(fuzz::pauseOf(input.byte()), rig, [&] { rig.bootloader.reset(rig.now); });
        const sim::Bytes bytes = input.bytes(input.byte());
        sent += bytes.size();
        rig.send(bytes);
        for (const sim::TimedByte &timed : rig.received()) {
            ++answered;
            rig.now = std::max(rig.now, timed.at);
        }
    }
    // A READ of seven bytes brings 256 and four of the frame, and nothing brings more.
    fuzz::require(answered <= 64 * (sent + 1), "the chip says no more than it was asked for");
    return 0;
}
