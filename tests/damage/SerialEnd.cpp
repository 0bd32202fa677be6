// The library's serial port.

#include "tests/damage/SerialEnd.h"

#include "libs/zvbl/transport/SerialPort.h"

namespace damage {
namespace {

SerialEnd *line = nullptr; // at which the port ends

}

SerialEnd::SerialEnd(const sim::ChipFacts &facts, const sim::CommandTable *additions)
    : Line(facts, nullptr, additions) {
    line = this;
}

SerialEnd::~SerialEnd() {
    line = line == this ? nullptr : line;
}

void SerialEnd::deliver(const std::vector<sim::TimedByte> &bytes) {
    arrivals.add(bytes, toHost, [](sim::TimedByte &timed, std::uint8_t mask) { timed.byte ^= mask; });
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
    if (!line->await(deadline))
        return Status::noAnswer;
    while (line->await(TimePoint{}))
        bytes.push_back(line->arrivals.take().byte);
    return Status::ok;
}

} // namespace zvbl
