#pragma once

#include <map>
#include <memory>
#include <set>

#include "sim/ports/nodes/NodePort.h"
#include "sim/ports/nodes/UsbNode.h"

namespace sim {

// The emulated bus: which device numbers are taken. The next device gets the next number, as a kernel does it.
class Hub {
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
class HubPort {
public:
    HubPort(Hub &hub, unsigned port, UsbDevice &device) : hub_(hub), port_(port), device_(device) {}

    // Plugs in and out as the device itself tells. `came` is set when it has appeared. False and a message when
    // the testbed refuses.
    bool follow(NodePort &owner, Nanoseconds now, bool &came, std::string &error);

    void unplug(NodePort &owner, Nanoseconds now);

    // When follow() has something to do next.
    std::optional<Nanoseconds> due(Nanoseconds now) const;

private:
    bool upToDate(const UsbPresence &found) const;
    std::string path() const;
    std::string description() const;
    bool plugIn(NodePort &owner, Nanoseconds now, std::string &error);

    Hub &hub_;
    unsigned port_;
    UsbDevice &device_;
    unsigned address_ = 0;     // 0: not on the bus
    unsigned attachments_ = 0; // of the device when it was plugged in
};

} // namespace sim
