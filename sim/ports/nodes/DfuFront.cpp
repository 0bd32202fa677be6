#include "sim/ports/nodes/DfuFront.h"

#include <algorithm>

#include "sim/links/usb/DfuDevice.h"
#include "sim/links/usb/UsbCable.h"
#include "sim/ports/Clock.h"
#include "sim/ports/nodes/UsbPort.h"
#include "sim/program/Options.h"

namespace sim {

namespace {

constexpr std::size_t megabyte = 1024 * 1024;

// A further chip of the same kind, with a memory that nobody saves and without faults.
struct Neighbour {
    Neighbour(Machine &machine, unsigned number)
        : chip(machine.chip.facts(), machine.options.spimMb * megabyte, machine.options.flashTime, faults, number),
          device(chip, faults, machine.log), cable(device, faults, machine.options.pace) {}

    Faults faults;
    Chip chip;
    DfuDevice device;
    UsbCable cable;
};

class DfuFront : public Device {
public:
    explicit DfuFront(Machine &machine);

    std::string node() const override { return "dfu"; }
    bool plugIn(DeviceLoop &loop, std::string &error) override;
    void unplug(DeviceLoop &loop) override;
    void reset(Nanoseconds now) override { cable_.pressReset(now); }
    void losePower(Nanoseconds now) override { cable_.losePower(now); }
    void work(Nanoseconds now) override;
    std::optional<Nanoseconds> due() const override;

private:
    Log &log_;
    DfuDevice device_;
    UsbCable cable_;
    std::vector<std::unique_ptr<Neighbour>> neighbours_;
    UsbBus bus_;
    std::vector<UsbPort> ports_;
    DeviceLoop *loop_ = nullptr;
};

DfuFront::DfuFront(Machine &machine)
    : log_(machine.log), device_(machine.chip, machine.faults, machine.log),
      cable_(device_, machine.faults, machine.options.pace) {
    unsigned port = 1;
    ports_.emplace_back(bus_, port, cable_);
    while (port <= machine.options.beside) {
        neighbours_.push_back(std::make_unique<Neighbour>(machine, port));
        ports_.emplace_back(bus_, ++port, neighbours_.back()->cable);
    }
}

bool DfuFront::plugIn(DeviceLoop &loop, std::string &error) {
    loop_ = &loop;
    bool came = true;
    for (UsbPort &port : ports_)
        if (!port.follow(loop, clockNow(), came, error))
            return false;
    return true;
}

void DfuFront::unplug(DeviceLoop &loop) {
    for (UsbPort &port : ports_)
        port.unplug(loop, clockNow());
}

void DfuFront::work(Nanoseconds now) {
    for (UsbPort &port : ports_) {
        bool came = false;
        std::string error;
        if (!port.follow(*loop_, now, came, error)) {
            log_.fault(error);
            loop_->end();
        }
        if (came)
            loop_->ready();
    }
    if (cable_.presence(now).forGood)
        loop_->end();
}

std::optional<Nanoseconds> DfuFront::due() const {
    std::optional<Nanoseconds> next;
    for (const UsbPort &port : ports_) {
        const std::optional<Nanoseconds> event = port.due(clockNow());
        next = event && next ? std::min(event, next) : event ? event : next;
    }
    return next;
}

} // namespace

bool serveDfu(Machine &machine, const std::string &, std::string &error) {
    DfuFront front(machine);
    return serveDevice(machine, front, error);
}

} // namespace sim
