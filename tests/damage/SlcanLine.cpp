// A CAN adapter at the library's serial port, and a bus with the chip behind it. Nothing checks what is on the way
// between the adapter and the port, so harm befalls each byte there.

#include "sim/links/SlcanAdapter.h"
#include "tests/damage/SerialEnd.h"

namespace damage {
namespace {

class SlcanLine : public SerialEnd {
public:
    explicit SlcanLine(const sim::ChipFacts &facts) : SerialEnd(facts, &sim::canCommands()) {}

    void send(const zvbl::Bytes &bytes) override {
        for (const Lane::Unit &unit : toChip.pass(bytes.size())) {
            m_fromHost = std::max(now() + unit.late, m_fromHost) + characterTime();
            hearFrames(m_fromHost);
            const auto character = static_cast<char>(bytes[unit.index] ^ unit.mask);
            m_becameAnother = m_becameAnother || (unit.mask != 0 && isInIdentifier(bytes, unit.index));
            say(m_adapter.receive({&character, 1}, m_fromHost), m_fromHost);
        }
    }

    bool await(zvbl::TimePoint deadline) override {
        const sim::Nanoseconds until = std::max<sim::Nanoseconds>(deadline.time_since_epoch().count(), now());
        for (std::deque<sim::TimedFrame> &frames = m_bus.toHost(); !frames.empty() && frames.front().at <= until;) {
            const sim::Nanoseconds at = frames.front().at;
            if (arrivals.await(zvbl::TimePoint(zvbl::Duration(at))))
                return true;
            hearFrames(at);
        }
        return arrivals.await(deadline);
    }

    bool becameAnother() const override { return m_becameAnother; }

private:
    // A frame is written as one line: t, three digits of its identifier, and the rest.
    static bool isInIdentifier(const zvbl::Bytes &line, std::size_t at) { return line[0] == 't' && at >= 1 && at <= 3; }

    sim::Nanoseconds characterTime() const { return sim::Pacer::serialBits * sim::second / baud; }

    // What the bus has brought to the adapter by then.
    void hearFrames(sim::Nanoseconds then) {
        std::deque<sim::TimedFrame> &frames = m_bus.toHost();
        for (; !frames.empty() && frames.front().at <= then; frames.pop_front())
            say(m_adapter.hear(frames.front()), frames.front().at);
    }

    void say(const std::string &text, sim::Nanoseconds at) {
        std::vector<sim::TimedByte> bytes;
        for (const char character : text) {
            m_toHost = std::max(at, m_toHost) + characterTime();
            bytes.push_back({static_cast<std::uint8_t>(character), m_toHost});
        }
        deliver(bytes);
    }

    sim::CanProtocol m_protocol{bootloader, log()};
    sim::CanLine m_bus{m_protocol, faults(), true};
    sim::SlcanAdapter m_adapter{m_bus, log()};
    sim::Nanoseconds m_fromHost = 0; // when the last character is through
    sim::Nanoseconds m_toHost = 0;
    bool m_becameAnother = false;
};

} // namespace

std::unique_ptr<Line> makeSlcanLine(const sim::ChipFacts &facts) {
    return std::make_unique<SlcanLine>(facts);
}

} // namespace damage
