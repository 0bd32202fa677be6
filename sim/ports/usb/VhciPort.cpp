#include "sim/ports/usb/VhciPort.h"

#include <algorithm>

#include <sys/socket.h>

#include "sim/ports/Clock.h"

namespace sim {

namespace {
constexpr Nanoseconds untilAnnounced = 5 * millisecond; // how often to look whether a driver has made its node
}

// Serves what has come, then plugs out and in as the device itself goes and comes.
bool VhciPort::work(Nanoseconds, std::string &error) {
    giveToHost();
    if (!takeFromHost()) {
        m_ended = true;
        return true;
    }
    return followPresence(error);
}

bool VhciPort::followPresence(std::string &error) {
    const UsbPresence presence = m_device.presence(clockNow());
    m_ended = presence.forGood;
    if (!presence.attached || presence.attachments != m_attachments)
        m_vhci.unplug();
    return !presence.attached || m_vhci.fd() >= 0 || plugInDevice(error);
}

bool VhciPort::plugInDevice(std::string &error) {
    m_usbIp.forget();
    m_announced = false;
    if (!m_vhci.plugIn(UsbSpeed::full, error))
        return false;
    const Nanoseconds now = clockNow();
    m_device.busReset(now);
    m_attachments = m_device.presence(now).attachments;
    return true;
}

std::optional<Nanoseconds> VhciPort::due(Nanoseconds now) {
    const std::optional<Nanoseconds> due = m_usbIp.nextDue(now);
    if (m_announced || m_vhci.fd() < 0)
        return due;
    return std::min(due.value_or(now + untilAnnounced), now + untilAnnounced);
}

void VhciPort::giveToHost() {
    const Bytes bytes = m_usbIp.takeDue(clockNow());
    if (!bytes.empty() && m_vhci.fd() >= 0)
        send(m_vhci.fd(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

// False when somebody has taken the device away from the kernel.
bool VhciPort::takeFromHost() {
    std::uint8_t bytes[65536];
    if (m_vhci.fd() < 0)
        return true;
    const ssize_t length = recv(m_vhci.fd(), bytes, sizeof bytes, MSG_DONTWAIT);
    if (length < 0)
        return true;
    const Nanoseconds now = clockNow();
    m_rest.disturb(now);
    return length > 0 && m_usbIp.receive(bytes, static_cast<std::size_t>(length), now);
}

std::string VhciPort::takeReady() {
    const std::string node = m_announced || m_vhci.fd() < 0 ? "" : m_vhci.node(m_node);
    m_announced = m_announced || !node.empty();
    return node;
}

} // namespace sim
