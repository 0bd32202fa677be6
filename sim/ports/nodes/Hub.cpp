#include "sim/ports/nodes/Hub.h"

#include <cstdio>

#include "sim/ports/Clock.h"

namespace sim {

namespace {

constexpr unsigned highestAddress = 127;
constexpr std::size_t productString = 15; // where a device descriptor has the numbers of its strings
constexpr std::size_t serialString = 16;

std::string hexOf(const Bytes &bytes) {
    std::string text;
    for (const unsigned byte : bytes) {
        char digits[8];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += digits;
    }
    return text;
}

std::string nodeOf(unsigned address) {
    char text[64];
    std::snprintf(text, sizeof text, "bus/usb/%03u/%03u", Hub::number, address);
    return text;
}

std::string attribute(const std::string &name, const std::string &value) {
    return "A: " + name + "=" + value + "\\n\n";
}

std::string hexNumber(const Bytes &bytes, std::size_t at) {
    return hexOf({bytes[at + 1], bytes[at]});
}

} // namespace

unsigned Hub::take() {
    do {
        m_last = m_last == highestAddress ? 2 : m_last + 1;
    } while (m_taken.count(m_last) != 0);
    m_taken.insert(m_last);
    return m_last;
}

std::string HubPort::path() const {
    const std::string bus = std::to_string(Hub::number);
    return "/devices/platform/zv32/usb" + bus + "/" + bus + "-" + std::to_string(m_port);
}

// What sysfs and udev know of a device, which has a name and a serial number.
std::string HubPort::description() const {
    const UsbDescriptors &known = m_device.descriptors();
    const Bytes &device = known.device;
    Bytes all = device;
    all.insert(all.end(), known.configuration.begin(), known.configuration.end());
    const std::string address = std::to_string(m_address);
    const std::string node = nodeOf(m_address);
    std::string text = "P: " + path() + "\nN: " + node + "=" + hexOf(all) +
                       "\nE: DEVTYPE=usb_device\nE: DEVNAME=/dev/" + node +
                       "\nE: SUBSYSTEM=usb\nE: MAJOR=189\nE: MINOR=" + std::to_string(m_address - 1) +
                       "\nE: BUSNUM=" + node.substr(8, 3) + "\nE: DEVNUM=" + node.substr(12, 3) +
                       "\nH: descriptors=" + hexOf(all) + "\n";
    text += attribute("busnum", std::to_string(Hub::number)) + attribute("devnum", address) +
            attribute("devpath", std::to_string(m_port)) + attribute("speed", "12") +
            attribute("bConfigurationValue", "1") + attribute("bNumConfigurations", "1") +
            attribute("idVendor", hexNumber(device, 8)) + attribute("idProduct", hexNumber(device, 10));
    text += attribute("product", known.strings[device[productString] - 1U]) +
            attribute("serial", known.strings[device[serialString] - 1U]);
    return text;
}

// The system gets to know the device: it has chosen its configuration when clients see it.
bool HubPort::plugIn(NodePort &owner, Nanoseconds now, std::string &error) {
    constexpr UsbSetup chooseConfiguration = {0x00, 9, 1, 0, 0};
    m_device.control(chooseConfiguration, {}, now);
    m_address = m_hub.take();
    m_hub.node(m_address) = std::make_shared<UsbNode>(m_device, m_attachments, owner.testbed());
    // The handler stays for all devices that get this number later.
    const auto serve = [&hub = m_hub, &owner, address = m_address](DeviceCall &call) {
        const DeviceAnswer answer = hub.node(address)->serve(call);
        owner.traffic();
        owner.wake();
        return answer;
    };
    return owner.testbed().attach("/dev/" + nodeOf(m_address), serve, error) &&
           owner.testbed().add(description(), error);
}

void HubPort::unplug(NodePort &owner, Nanoseconds now) {
    if (m_address == 0)
        return;
    m_hub.node(m_address)->vanish(now);
    owner.testbed().withdraw(path(), {"/dev/" + nodeOf(m_address)});
    m_hub.give(m_address);
    m_address = 0;
}

bool HubPort::upToDate(const UsbPresence &found) const {
    return m_address == 0 ? !found.attached : found.attached && found.attachments == m_attachments;
}

std::optional<Nanoseconds> HubPort::due(Nanoseconds now) const {
    return upToDate(m_device.presence(now)) ? m_device.nextEvent(now) : now;
}

bool HubPort::follow(NodePort &owner, Nanoseconds now, bool &came, std::string &error) {
    const UsbPresence found = m_device.presence(now);
    if (upToDate(found))
        return true;
    unplug(owner, now);
    if (!found.attached)
        return true;
    m_attachments = found.attachments;
    came = plugIn(owner, now, error);
    return came;
}

} // namespace sim
