// The library's SPI bus, ending at a simulated chip.

#include "libs/zvbl/transport/SpiPort.h"
#include "sim/links/SpiProtocol.h"
#include "tests/damage/Line.h"

namespace damage {
namespace {

constexpr sim::Nanoseconds byteTime = 8 * sim::second / 1000000;

class SpiLine;
SpiLine *line = nullptr; // at which the library's port ends

class SpiLine : public Line {
public:
    explicit SpiLine(const sim::ChipFacts &facts) : Line(facts) {}
    ~SpiLine() override { line = line == this ? nullptr : line; }

    // Selects the chip, clocks the bytes out, and gives those that came in meanwhile. The clock is the host's: what
    // is lost on the way in makes room for the idle level, what is doubled drives out the last.
    zvbl::Bytes clock(const zvbl::Bytes &bytes, bool heard) {
        zvbl::Bytes in;
        m_protocol.select(now());
        for (const Lane::Unit &unit : toChip.pass(bytes.size())) {
            advanceTo(now() + byteTime + unit.late);
            in.push_back(m_protocol.shift(static_cast<std::uint8_t>(bytes[unit.index] ^ unit.mask), now()));
        }
        m_protocol.deselect(now());
        in.resize(bytes.size(), 0xFF);
        return heard ? harmed(in) : in;
    }

private:
    zvbl::Bytes harmed(const zvbl::Bytes &in) {
        zvbl::Bytes bytes;
        for (const Lane::Unit &unit : toHost.pass(in.size())) {
            bytes.push_back(static_cast<std::uint8_t>(in[unit.index] ^ unit.mask));
            advanceTo(now() + unit.late);
        }
        bytes.resize(in.size(), 0xFF);
        return bytes;
    }

    sim::SpiProtocol m_protocol{bootloader, faults(), log()};
};

} // namespace

std::unique_ptr<Line> makeSpiLine(const sim::ChipFacts &facts) {
    auto made = std::make_unique<SpiLine>(facts);
    line = made.get();
    return made;
}

} // namespace damage

namespace zvbl {

using damage::line;

Status SpiPort::open(const LinkSettings &) {
    return line == nullptr || line->isGone() ? Status::cantOpen : Status::ok;
}

Status SpiPort::setLine(ControlLine, bool) {
    return Status::gone;
}

Status SpiPort::setSpeed(std::uint32_t) {
    return Status::ok;
}

Status SpiPort::exchange(const Bytes &message, std::size_t count, Bytes &heard) {
    if (!message.empty())
        line->clock(message, false);
    const Bytes in = line->clock(Bytes(count), true);
    heard.insert(heard.end(), in.begin(), in.end());
    return line->isGone() ? Status::gone : Status::ok;
}

} // namespace zvbl
