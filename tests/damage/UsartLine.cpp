// The library's serial port, ending at a simulated chip.

#include "sim/links/UsartLine.h"

#include "libs/zvbl/transport/SerialLine.h"
#include "libs/zvbl/transport/SerialPort.h"
#include "tests/damage/Line.h"

namespace damage {
namespace {

class UsartLine;
UsartLine *line = nullptr; // at which the library's port ends

class UsartLine : public Line {
public:
    explicit UsartLine(const sim::ChipFacts &facts) : Line(facts) {}
    ~UsartLine() override { line = line == this ? nullptr : line; }

    void send(const zvbl::Bytes &bytes) {
        for (const Lane::Unit &unit : toChip.pass(bytes.size())) {
            const auto byte = static_cast<std::uint8_t>(bytes[unit.index] ^ unit.mask);
            m_wire.fromHost(byte, now() + unit.late, baud);
        }
        std::deque<sim::TimedByte> &answers = m_wire.toHost();
        arrivals.add({answers.begin(), answers.end()}, toHost,
                     [](sim::TimedByte &timed, std::uint8_t mask) { timed.byte ^= mask; });
        answers.clear();
    }

    Arrivals<sim::TimedByte> arrivals;
    unsigned baud = 0;

private:
    sim::UsartProtocol m_protocol{bootloader};
    sim::UsartLine m_wire{m_protocol, faults()};
};

} // namespace

std::unique_ptr<Line> makeUsartLine(const sim::ChipFacts &facts) {
    auto made = std::make_unique<UsartLine>(facts);
    line = made.get();
    return made;
}

} // namespace damage

namespace zvbl {

using damage::line;

bool isSerialSetting(const LinkSettings &settings) {
    return settings.baud > 0;
}

SerialPort::~SerialPort() = default;

Status SerialPort::open(const LinkSettings &settings) {
    if (line == nullptr || line->isGone())
        return Status::cantOpen;
    line->arrivals.clear();
    return reconfigure(settings);
}

Status SerialPort::reconfigure(const LinkSettings &settings) {
    line->baud = static_cast<unsigned>(settings.baud);
    m_characterTime = Duration(sim::Pacer::serialBits * sim::second / line->baud);
    return Status::ok;
}

Status SerialPort::setLine(ControlLine, bool) {
    return Status::ok;
}

Status SerialPort::send(const Bytes &bytes, TimePoint) {
    line->send(bytes);
    return line->isGone() ? Status::gone : Status::ok;
}

Status SerialPort::receive(Bytes &bytes, TimePoint deadline) {
    if (line->isGone())
        return Status::gone;
    if (!line->arrivals.await(deadline))
        return Status::noAnswer;
    while (line->arrivals.await(TimePoint{}))
        bytes.push_back(line->arrivals.take().byte);
    return Status::ok;
}

} // namespace zvbl
