#include "sim/ports/nodes/DfuNode.h"

#include <algorithm>

#include "sim/links/usb/DfuDevice.h"
#include "sim/links/usb/UsbCable.h"
#include "sim/ports/Clock.h"
#include "sim/ports/nodes/Hub.h"

namespace sim {

namespace {

// A further chip of the same kind, with a memory that nobody saves and without faults.
struct Neighbour {
    Neighbour(const Machine &machine, unsigned number)
        : chip(machine.chip.facts(), machine.spimSize, machine.flashTime, faults, number),
          device(chip, faults, machine.log), cable(device, faults, machine.pace) {}

    Faults faults;
    Chip chip;
    DfuDevice device;
    UsbCable cable;
};

class DfuNode : public NodePort {
public:
    explicit DfuNode(const Machine &machine);

    bool addDevice(std::string &error) override;
    void unplug() override;
    void reset(Nanoseconds now) override { cable_.pressReset(now); }
    void losePower(Nanoseconds now) override { cable_.losePower(now); }
    void workByItself(Nanoseconds now) override;
    std::optional<Nanoseconds> due(Nanoseconds now) override;

private:
    Log &log_;
    DfuDevice device_;
    UsbCable cable_;
    std::vector<std::unique_ptr<Neighbour>> neighbours_;
    Hub hub_;
    std::vector<HubPort> ports_;
};

DfuNode::DfuNode(const Machine &machine)
    : NodePort("dfu"), log_(machine.log), device_(machine.chip, machine.faults, machine.log),
      cable_(device_, machine.faults, machine.pace) {
    unsigned port = 1;
    ports_.emplace_back(hub_, port, cable_);
    while (port <= machine.beside) {
        neighbours_.push_back(std::make_unique<Neighbour>(machine, port));
        ports_.emplace_back(hub_, ++port, neighbours_.back()->cable);
    }
}

bool DfuNode::addDevice(std::string &error) {
    bool came = true;
    for (HubPort &port : ports_)
        if (!port.follow(*this, clockNow(), came, error))
            return false;
    return true;
}

void DfuNode::unplug() {
    for (HubPort &port : ports_)
        port.unplug(*this, clockNow());
}

void DfuNode::workByItself(Nanoseconds now) {
    for (HubPort &port : ports_) {
        bool came = false;
        std::string error;
        if (!port.follow(*this, now, came, error)) {
            log_.fault(error);
            end();
        }
        if (came)
            ready();
    }
    if (cable_.presence(now).forGood)
        end();
}

std::optional<Nanoseconds> DfuNode::due(Nanoseconds now) {
    std::optional<Nanoseconds> next;
    for (const HubPort &port : ports_) {
        const std::optional<Nanoseconds> event = port.due(now);
        next = event && next ? std::min(event, next) : event ? event : next;
    }
    return next;
}

} // namespace

std::unique_ptr<Port> makeDfuNode(const Machine &machine, const std::string &, std::string &) {
    return std::make_unique<Whole<DfuNode>>(machine);
}

} // namespace sim
