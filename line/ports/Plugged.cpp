#include "line/ports/Plugged.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <tuple>

#include "line/channel/Channel.h"
#include "programs/machine/Ports.h"

namespace {

const char *const sockets = "/dev/serial/by-path/";

LinkKind linkOf(PortKind kind) {
    switch (kind) {
    case PortKind::i2c: return LinkKind::i2c;
    case PortKind::spi: return LinkKind::spi;
    case PortKind::can: return LinkKind::can;
    case PortKind::usb: return LinkKind::dfu;
    default: return LinkKind::usart;
    }
}

// The name of the socket of a serial port; empty for one that has none.
std::string socketOf(const std::string &device, const Machine &machine) {
    for (const std::string &name : machine.names(sockets))
        if (lastPart(machine.target(sockets + name)) == device)
            return sockets + name;
    return {};
}

// Ports that a plug can bring are named by the order in which they come.
bool comesByPlug(const std::string &device) {
    return device.rfind("ttyUSB", 0) == 0 || device.rfind("ttyACM", 0) == 0;
}

PluggedPort pluggedPort(const Port &port, const Machine &machine) {
    const std::string socket = port.kind == PortKind::serial ? socketOf(port.name, machine) : "";
    const bool hasNode = port.kind != PortKind::can && port.kind != PortKind::usb;
    const std::string name = hasNode ? "/dev/" + port.name : port.name;
    return {linkOf(port.kind), port.name, socket.empty() ? name : socket, !socket.empty() || !comesByPlug(port.name),
            ""};
}

bool isEarlier(const PluggedPort &one, const PluggedPort &other) {
    if (one.kind != other.kind)
        return one.kind < other.kind;
    return strverscmp(one.port.c_str(), other.port.c_str()) < 0; // 2.10 is behind 2.9
}

std::string unusedName(std::set<std::string> &used) {
    for (int number = 1;; ++number) {
        const std::string name = 'A' + std::to_string(number);
        if (used.insert(name).second)
            return name;
    }
}

// A text of JSON is one of TOML too.
std::string quoted(const std::string &text) {
    return Json(text).dump(-1, ' ', true, Json::error_handler_t::replace);
}

} // namespace

std::vector<PluggedPort> pluggedPorts(const Station &station, const Machine &machine) {
    std::vector<PluggedPort> ports;
    for (const Port &port : allPorts(machine)) {
        ports.push_back(pluggedPort(port, machine));
        for (const Nest &nest : station.nests)
            if (station.link.kind == ports.back().kind && nest.port == ports.back().port)
                ports.back().nest = nest.name;
    }
    std::sort(ports.begin(), ports.end(), isEarlier);
    return ports;
}

std::string nestTables(const std::vector<PluggedPort> &ports, const Station &station) {
    std::set<std::string> used;
    for (const Nest &nest : station.nests)
        used.insert(nest.name);
    std::string text;
    for (const PluggedPort &port : ports) {
        text += text.empty() ? "" : "\n";
        text += std::string("# ") + nameOf(port.kind) + ", " + quoted(port.device) +
                (port.stays ? "" : ": its name goes by the order of plugging in") + "\n[[nest]]\n";
        text += "name = " + quoted(port.nest.empty() ? unusedName(used) : port.nest) + '\n';
        text += "port = " + quoted(port.port) + '\n';
    }
    return text;
}
