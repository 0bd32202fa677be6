// The library's CAN socket, ending at a simulated chip. A bus checks what is in a frame, so harm befalls whole frames.

#include "sim/links/CanLine.h"

#include "libs/zvbl/transport/CanSocket.h"
#include "libs/zvbl/wire/Wire.h"
#include "tests/damage/Line.h"

namespace damage {
namespace {

constexpr unsigned speed = wire::canStartSpeed;

class CanLine;
CanLine *line = nullptr; // at which the library's port ends

class CanLine : public Line {
public:
    explicit CanLine(const sim::ChipFacts &facts) : Line(facts, nullptr, &sim::canCommands()) {}
    ~CanLine() override { line = line == this ? nullptr : line; }

    void send(const zvbl::CanFrame &frame) {
        m_queue.push_back({frame.id, {frame.data.begin(), frame.data.begin() + frame.size}});
    }

    // Frames of one group leave together, when the host waits for what comes of them.
    bool await(zvbl::TimePoint deadline) {
        for (const Lane::Unit &unit : toChip.pass(m_queue.size()))
            m_wire.fromHost(m_queue[unit.index], now() + unit.late, speed);
        m_queue.clear();
        std::deque<sim::TimedFrame> &answers = m_wire.toHost();
        arrivals.add({answers.begin(), answers.end()}, toHost, [](sim::TimedFrame &, std::uint8_t) {});
        answers.clear();
        return arrivals.await(deadline);
    }

    Arrivals<sim::TimedFrame> arrivals;

private:
    sim::CanProtocol m_protocol{bootloader, log()};
    sim::CanLine m_wire{m_protocol, faults(), true};
    std::vector<sim::CanFrame> m_queue;
};

} // namespace

std::unique_ptr<Line> makeCanLine(const sim::ChipFacts &facts) {
    auto made = std::make_unique<CanLine>(facts);
    line = made.get();
    return made;
}

} // namespace damage

namespace zvbl {

using damage::line;

bool CanSocket::isInterface(const std::string &) {
    return true;
}

CanSocket::~CanSocket() = default;

Status CanSocket::open(const LinkSettings &) {
    if (line == nullptr || line->isGone())
        return Status::cantOpen;
    line->arrivals.clear();
    m_bitRate = damage::speed;
    return Status::ok;
}

Status CanSocket::setLine(ControlLine, bool) {
    return Status::gone;
}

Status CanSocket::send(const CanFrame &frame, TimePoint) {
    line->send(frame);
    return line->isGone() ? Status::gone : Status::ok;
}

Status CanSocket::receive(CanFrame &frame, TimePoint deadline) {
    if (!line->await(deadline))
        return line->isGone() ? Status::gone : Status::noAnswer;
    const sim::TimedFrame timed = line->arrivals.take();
    frame.id = static_cast<std::uint16_t>(timed.frame.id);
    frame.size = static_cast<std::uint8_t>(timed.frame.data.size());
    std::copy(timed.frame.data.begin(), timed.frame.data.end(), frame.data.begin());
    return Status::ok;
}

Status CanSocket::mayChangeBitRate() {
    return Status::gone;
}

Status CanSocket::setBitRate(unsigned) {
    return Status::gone;
}

} // namespace zvbl
