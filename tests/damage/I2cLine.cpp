// The library's I2C bus, ending at a simulated chip.

#include "libs/zvbl/transport/I2cPort.h"
#include "sim/links/I2cProtocol.h"
#include "tests/damage/Line.h"

namespace damage {
namespace {

constexpr sim::Nanoseconds byteTime = 9 * sim::second / 400000;

class I2cLine;
I2cLine *line = nullptr; // at which the library's port ends

class I2cLine : public Line {
public:
    explicit I2cLine(const sim::ChipFacts &facts) : Line(facts, &sim::i2cCommands()) {}
    ~I2cLine() override { line = line == this ? nullptr : line; }

    bool write(const zvbl::Bytes &bytes) {
        zvbl::Bytes arrived;
        if (!m_protocol.acknowledges(false, now()))
            return spend(1), false;
        for (const Lane::Unit &unit : toChip.pass(bytes.size())) {
            arrived.push_back(static_cast<std::uint8_t>(bytes[unit.index] ^ unit.mask));
            advanceTo(now() + unit.late);
        }
        spend(bytes.size() + 1);
        return m_protocol.write(arrived, now());
    }

    // The clock is the host's: what is lost makes room for the idle level, what is doubled drives out the last.
    bool read(zvbl::Bytes &bytes) {
        const sim::I2cProtocol::Read answer = m_protocol.read(bytes.size(), now());
        spend(answer.acknowledged ? bytes.size() + 1 : 1);
        if (!answer.acknowledged)
            return false;
        advanceTo(answer.at);
        zvbl::Bytes heard;
        for (const Lane::Unit &unit : toHost.pass(answer.bytes.size())) {
            heard.push_back(static_cast<std::uint8_t>(answer.bytes[unit.index] ^ unit.mask));
            advanceTo(now() + unit.late);
        }
        heard.resize(bytes.size(), 0xFF);
        bytes = heard;
        return true;
    }

private:
    void spend(std::size_t bytes) { advanceTo(now() + byteTime * static_cast<sim::Nanoseconds>(bytes)); }

    sim::I2cProtocol m_protocol{bootloader, faults()};
};

} // namespace

std::unique_ptr<Line> makeI2cLine(const sim::ChipFacts &facts) {
    auto made = std::make_unique<I2cLine>(facts);
    line = made.get();
    return made;
}

} // namespace damage

namespace zvbl {

using damage::line;

Status I2cPort::open(const LinkSettings &) {
    return line == nullptr || line->isGone() ? Status::cantOpen : Status::ok;
}

Status I2cPort::setLine(ControlLine, bool) {
    return Status::gone;
}

Status I2cPort::write(std::uint8_t, const Bytes &bytes) {
    const bool done = line->write(bytes);
    return line->isGone() ? Status::gone : done ? Status::ok : Status::refused;
}

Status I2cPort::read(std::uint8_t, Bytes &bytes) {
    const bool done = line->read(bytes);
    return line->isGone() ? Status::gone : done ? Status::ok : Status::refused;
}

} // namespace zvbl
