// The client on a CAN adapter, with an adapter and a chip that answer anything.

#include "tests/fuzz/LinkJob.h"
#include "tests/sim/CanRig.h"

namespace {

constexpr BYTE can = 3;

class AdapterPeer : public fuzz::Peer {
public:
    std::vector<std::uint8_t> answer(const std::vector<std::uint8_t> &sent) override {
        m_rig.now = fuzz::ttyTime() + sim::second;
        std::string text = m_rig.adapter.receive(std::string(sent.begin(), sent.end()), m_rig.now);
        for (const sim::TimedFrame &timed : m_rig.received())
            text += m_rig.adapter.hear(timed);
        return {text.begin(), text.end()};
    }

private:
    sim::AdapterRig m_rig{{}, {}, false, "ZV32F421_16K"};
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    AdapterPeer adapter;
    fuzz::useLink(can, adapter, fuzz::Input(data, size));
    return 0;
}
