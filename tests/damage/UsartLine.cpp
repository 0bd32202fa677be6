#include "sim/links/UsartLine.h"

#include "tests/damage/SerialEnd.h"

namespace damage {
namespace {

class UsartLine : public SerialEnd {
public:
    explicit UsartLine(const sim::ChipFacts &facts) : SerialEnd(facts) {}

    void send(const zvbl::Bytes &bytes) override {
        for (const Lane::Unit &unit : toChip.pass(bytes.size())) {
            const auto byte = static_cast<std::uint8_t>(bytes[unit.index] ^ unit.mask);
            m_wire.fromHost(byte, now() + unit.late, baud);
        }
        std::deque<sim::TimedByte> &answers = m_wire.toHost();
        deliver({answers.begin(), answers.end()});
        answers.clear();
    }

private:
    sim::UsartProtocol m_protocol{bootloader};
    sim::UsartLine m_wire{m_protocol, faults()};
};

} // namespace

std::unique_ptr<Line> makeUsartLine(const sim::ChipFacts &facts) {
    return std::make_unique<UsartLine>(facts);
}

} // namespace damage
