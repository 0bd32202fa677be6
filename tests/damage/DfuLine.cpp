// The library's USB device, ending at a simulated chip. A bus checks and repeats packets, so a unit is a whole
// transfer.

#include "libs/zvbl/transport/UsbPort.h"
#include "sim/links/usb/DfuDescriptors.h"
#include "sim/links/usb/DfuDevice.h"
#include "tests/damage/Line.h"

namespace damage {
namespace {

constexpr sim::Nanoseconds byteTime = sim::second / 1200000;

class DfuLine;
DfuLine *line = nullptr; // at which the library's port ends

class DfuLine : public Line {
public:
    explicit DfuLine(const sim::ChipFacts &facts) : Line(facts) {}
    ~DfuLine() override { line = line == this ? nullptr : line; }

    bool isThere() { return !isGone() && m_device.presence(now()).attached; }
    void open() {
        constexpr std::uint8_t setConfiguration = 9;
        m_attachments = m_device.presence(now()).attachments;
        m_device.control({0, setConfiguration, 1, 0, 0}, {}, now());
    }
    // Since it was opened; one that comes back is another one.
    bool hasLeft() { return !isThere() || m_device.presence(now()).attachments != m_attachments; }

    zvbl::Status transfer(const sim::UsbSetup &setup, zvbl::Bytes &data, zvbl::Duration timeout) {
        const sim::Nanoseconds limit = now() + timeout.count();
        if (hasLeft())
            return zvbl::Status::gone;
        advanceTo(now() + byteTime * static_cast<sim::Nanoseconds>(data.size() + sizeof setup));
        sim::UsbAnswer answer = sim::UsbAnswer::silent();
        for (const Lane::Unit &unit : toChip.pass(1)) {
            advanceTo(now() + unit.late);
            answer = m_device.control(setup, setup.towardsHost() ? zvbl::Bytes() : data, now());
        }
        const bool heard = answer.kind != sim::UsbAnswer::Kind::silent && comesBack(answer.at);
        if (hasLeft() || !heard || now() > limit) {
            advanceTo(limit);
            return hasLeft() ? zvbl::Status::gone : zvbl::Status::noAnswer;
        }
        m_device.delivered(now());
        if (setup.towardsHost())
            data = answer.data;
        return answer.kind == sim::UsbAnswer::Kind::done ? zvbl::Status::ok : zvbl::Status::refused;
    }

private:
    bool comesBack(sim::Nanoseconds at) {
        const std::vector<Lane::Unit> units = toHost.pass(1);
        advanceTo(at + (units.empty() ? 0 : units.front().late));
        return !units.empty();
    }

    sim::DfuDevice m_device{chip(), faults(), log()};
    unsigned m_attachments = 0;
};

} // namespace

std::unique_ptr<Line> makeDfuLine(const sim::ChipFacts &facts) {
    auto made = std::make_unique<DfuLine>(facts);
    line = made.get();
    return made;
}

} // namespace damage

namespace zvbl {

using damage::line;

namespace {
constexpr std::uint8_t toInterface = 0x21; // class requests
constexpr std::uint8_t fromInterface = 0xA1;
} // namespace

UsbBus::~UsbBus() = default;
UsbHandle::~UsbHandle() = default;

Status listUsbDevices(std::vector<UsbRow> &rows) {
    if (line != nullptr && line->isThere())
        rows.push_back({0x1209, 0x0001, "usb 1-1"});
    return Status::ok;
}

bool isUsbSetting(const LinkSettings &settings) {
    return settings.portNumber >= 0;
}

UsbPort::~UsbPort() = default;

Status UsbPort::open(const LinkSettings &) {
    if (line == nullptr || !line->isThere())
        return Status::cantOpen;
    line->open();
    m_dfu.transferSize = sim::dfuTransferSize(line->chip());
    return Status::ok;
}

Status UsbPort::reconfigure(const LinkSettings &) {
    return Status::ok;
}

Status UsbPort::setLine(ControlLine, bool) {
    return Status::gone;
}

Status UsbPort::send(DfuRequest request, std::uint16_t value, Bytes data, Duration timeout) {
    const auto length = static_cast<std::uint16_t>(data.size());
    return line->transfer({toInterface, static_cast<std::uint8_t>(request), value, 0, length}, data, timeout);
}

Status UsbPort::fetch(DfuRequest request, std::uint16_t value, std::size_t size, Bytes &data, Duration timeout) {
    data.clear();
    const auto length = static_cast<std::uint16_t>(size);
    return line->transfer({fromInterface, static_cast<std::uint8_t>(request), value, 0, length}, data, timeout);
}

Status UsbPort::wait(Duration time) {
    damage::advanceTo(damage::now() + time.count());
    return line->hasLeft() ? Status::gone : Status::ok;
}

void UsbPort::expectRestart() {}

void UsbPort::endRestart() {}

} // namespace zvbl
