// The client on a serial line, with a chip that answers anything.

#include "tests/fuzz/LinkJob.h"
#include "tests/fuzz/Peers.h"

namespace {

constexpr BYTE usart = 0;

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::ChipPeer chip;
    fuzz::useLink(usart, chip, fuzz::Input(data, size));
    return 0;
}
