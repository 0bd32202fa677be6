// The client on a CAN adapter, with an adapter and a chip that answer anything.

#include "tests/fuzz/LinkJob.h"
#include "tests/fuzz/Peers.h"

namespace {

constexpr BYTE can = 3;

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::AdapterPeer adapter;
    fuzz::useLink(can, adapter, fuzz::Input(data, size));
    return 0;
}
