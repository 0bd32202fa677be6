// The client on a serial line, with a chip that answers anything.

#include "tests/fuzz/LinkJob.h"
#include "tests/sim/Rig.h"

namespace {

constexpr BYTE usart = 0;

class ChipPeer : public fuzz::Peer {
public:
    std::vector<std::uint8_t> answer(const std::vector<std::uint8_t> &sent) override {
        m_rig.now = fuzz::ttyTime() + sim::second;
        m_rig.send(sent);
        sim::Bytes bytes;
        for (const sim::TimedByte &timed : m_rig.received())
            bytes.push_back(timed.byte);
        return bytes;
    }

private:
    sim::Rig m_rig{"ZV32F421_16K"};
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    ChipPeer chip;
    fuzz::useLink(usart, chip, fuzz::Input(data, size));
    return 0;
}
