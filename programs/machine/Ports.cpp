#include "programs/machine/Ports.h"

#include <algorithm>
#include <regex>

#include <net/if.h>

#include "programs/machine/UsbDevice.h"

namespace {

constexpr char canInterfaceType[] = "280"; // ARPHRD_CAN

bool isLike(const std::string &name, const char *pattern) {
    return std::regex_match(name, std::regex(pattern));
}

// Whether a name is that of a CAN interface, one that is there or one as they are named.
bool isCanName(const std::string &name) {
    return std::regex_match(name, std::regex("(v|sl|vx)?can[0-9]+")) ||
           (name.find('/') == std::string::npos && if_nametoindex(name.c_str()) != 0);
}

PortKind kindOf(const std::string &name) {
    if (isLike(name, "i2c-[0-9]+"))
        return PortKind::i2c;
    if (isLike(name, "spi(dev)?[0-9]+\\.[0-9]+"))
        return PortKind::spi;
    if (isLike(name, "[0-9]+-[0-9.]+"))
        return PortKind::usb;
    return PortKind::serial;
}

bool hasNode(PortKind kind) {
    return kind != PortKind::can && kind != PortKind::usb;
}

// The ports that a board never had stay in the list of the kernel, without a type.
bool isSerial(const std::string &name, const Machine &machine) {
    const std::string place = "/sys/class/tty/" + name;
    return machine.has(place + "/device") && machine.line(place + "/type").value_or("1") != "0";
}

void add(std::vector<Port> &ports, PortKind kind, const std::string &name, const Machine &machine) {
    ports.push_back({kind, name, hasNode(kind) ? machine.path("/dev/" + name) : ""});
}

} // namespace

Port portOf(const std::string &word, const Machine &machine) {
    if (word.find('/') == std::string::npos) {
        const PortKind kind = kindOf(word);
        if (kind == PortKind::serial && isCanName(word))
            return {PortKind::can, word, ""};
        return {kind, word, hasNode(kind) ? machine.path("/dev/" + word) : ""};
    }
    const std::string target = Machine().target(word);
    const std::string name = lastPart(target.empty() ? word : target);
    const PortKind kind = kindOf(name);
    return {hasNode(kind) ? kind : PortKind::serial, name, word};
}

std::vector<Port> allPorts(const Machine &machine) {
    std::vector<Port> ports;
    for (const std::string &name : machine.names("/sys/class/tty"))
        if (isSerial(name, machine))
            add(ports, PortKind::serial, name, machine);
    for (const std::string &name : machine.names("/sys/bus/i2c/devices"))
        if (kindOf(name) == PortKind::i2c)
            add(ports, PortKind::i2c, name, machine);
    for (const std::string &name : machine.names("/sys/class/spidev"))
        add(ports, PortKind::spi, name, machine);
    for (const std::string &name : machine.names("/sys/bus/spi/devices"))
        if (machine.target("/sys/bus/spi/devices/" + name + "/driver").empty())
            add(ports, PortKind::spi, name, machine);
    for (const std::string &name : machine.names("/sys/class/net"))
        if (machine.line("/sys/class/net/" + name + "/type") == canInterfaceType)
            add(ports, PortKind::can, name, machine);
    for (const std::string &name : machine.names("/sys/bus/usb/devices"))
        if (kindOf(name) == PortKind::usb && isDfuDevice(name, machine))
            add(ports, PortKind::usb, name, machine);
    return ports;
}
