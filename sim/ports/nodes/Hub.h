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
    void give(unsigned address) { m_taken.erase(address); }

    // What serves the node of a number; the one before is forgotten.
    std::shared_ptr<UsbNode> &node(unsigned address) { return m_nodes[address]; }

private:
    unsigned m_last = 1; // the root hub
    std::set<unsigned> m_taken;
    std::map<unsigned, std::shared_ptr<UsbNode>> m_nodes;
};

// A port of the bus with a device that may come and go: keeps the testbed up to date with it.
class HubPort {
public:
    HubPort(Hub &hub, unsigned port, UsbDevice &device) : m_hub(hub), m_port(port), m_device(device) {}

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

    Hub &m_hub;
    unsigned m_port;
    UsbDevice &m_device;
    unsigned m_address = 0;     // 0: not on the bus
    unsigned m_attachments = 0; // of the device when it was plugged in
};

} // namespace sim
