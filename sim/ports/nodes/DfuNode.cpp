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
        : chip(machine.chip.facts(), machine.spimSize, machine.flashTime, faults, numberOf(machine.unit, number)),
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
    void reset(Nanoseconds now) override { m_cable.pressReset(now); }
    void losePower(Nanoseconds now) override { m_cable.losePower(now); }
    void workByItself(Nanoseconds now) override;
    std::optional<Nanoseconds> due(Nanoseconds now) override;

private:
    Log &m_log;
    DfuDevice m_device;
    UsbCable m_cable;
    std::vector<std::unique_ptr<Neighbour>> m_neighbours;
    Hub m_hub;
    std::vector<HubPort> m_ports;
};

DfuNode::DfuNode(const Machine &machine)
    : NodePort("dfu"), m_log(machine.log), m_device(machine.chip, machine.faults, machine.log),
      m_cable(m_device, machine.faults, machine.pace) {
    unsigned port = 1;
    m_ports.emplace_back(m_hub, port, m_cable);
    while (port <= machine.beside) {
        m_neighbours.push_back(std::make_unique<Neighbour>(machine, port));
        m_ports.emplace_back(m_hub, ++port, m_neighbours.back()->cable);
    }
}

bool DfuNode::addDevice(std::string &error) {
    bool came = true;
    for (HubPort &port : m_ports)
        if (!port.follow(*this, clockNow(), came, error))
            return false;
    return true;
}

void DfuNode::unplug() {
    for (HubPort &port : m_ports)
        port.unplug(*this, clockNow());
}

void DfuNode::workByItself(Nanoseconds now) {
    for (HubPort &port : m_ports) {
        bool came = false;
        std::string error;
        if (!port.follow(*this, now, came, error)) {
            m_log.fault(error);
            end();
        }
        if (came)
            ready();
    }
    if (m_cable.presence(now).forGood)
        end();
}

std::optional<Nanoseconds> DfuNode::due(Nanoseconds now) {
    std::optional<Nanoseconds> next;
    for (const HubPort &port : m_ports) {
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
