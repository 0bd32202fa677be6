#pragma once

#include <map>
#include <memory>
#include <set>

#include "sim/ports/nodes/Serve.h"
#include "sim/ports/nodes/UsbNode.h"

namespace sim {

// The emulated bus: which device numbers are taken. The next device gets the next number, as a kernel does it.
class UsbBus {
public:
    static constexpr unsigned number = 1;

    unsigned take();
    void give(unsigned address) { taken_.erase(address); }

    // What serves the node of a number; the one before is forgotten.
    std::shared_ptr<UsbNode> &node(unsigned address) { return nodes_[address]; }

private:
    unsigned last_ = 1; // the root hub
    std::set<unsigned> taken_;
    std::map<unsigned, std::shared_ptr<UsbNode>> nodes_;
};

// A port of the bus with a device that may come and go: keeps what the testbed shows in step with it.
class UsbPort {
public:
    UsbPort(UsbBus &bus, unsigned port, UsbDevice &device) : bus_(bus), port_(port), device_(device) {}

    // Plugs in and out as the device itself tells. `came` is set when it has appeared. False and a message when
    // the testbed refuses.
    bool follow(DeviceLoop &loop, Nanoseconds now, bool &came, std::string &error);

    void unplug(DeviceLoop &loop, Nanoseconds now);

    // When follow() has something to do next.
    std::optional<Nanoseconds> due(Nanoseconds now) const;

private:
    bool inStep(const UsbPresence &found) const;
    std::string path() const;
    std::string description() const;
    bool plugIn(DeviceLoop &loop, Nanoseconds now, std::string &error);

    UsbBus &bus_;
    unsigned port_;
    UsbDevice &device_;
    unsigned address_ = 0;     // 0: not on the bus
    unsigned attachments_ = 0; // of the device when it was plugged in
};

} // namespace sim
