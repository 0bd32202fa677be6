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
        ended_ = true;
        return true;
    }
    return followPresence(error);
}

bool VhciPort::followPresence(std::string &error) {
    const UsbPresence presence = device_.presence(clockNow());
    ended_ = presence.forGood;
    if (!presence.attached || presence.attachments != attachments_)
        vhci_.unplug();
    return !presence.attached || vhci_.fd() >= 0 || plugInDevice(error);
}

bool VhciPort::plugInDevice(std::string &error) {
    usbIp_.forget();
    announced_ = false;
    if (!vhci_.plugIn(UsbSpeed::full, error))
        return false;
    const Nanoseconds now = clockNow();
    device_.busReset(now);
    attachments_ = device_.presence(now).attachments;
    return true;
}

std::optional<Nanoseconds> VhciPort::due(Nanoseconds now) {
    const std::optional<Nanoseconds> due = usbIp_.nextDue(now);
    if (announced_ || vhci_.fd() < 0)
        return due;
    return std::min(due.value_or(now + untilAnnounced), now + untilAnnounced);
}

void VhciPort::giveToHost() {
    const Bytes bytes = usbIp_.takeDue(clockNow());
    if (!bytes.empty() && vhci_.fd() >= 0)
        send(vhci_.fd(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

// False when somebody has taken the device away from the kernel.
bool VhciPort::takeFromHost() {
    std::uint8_t bytes[65536];
    if (vhci_.fd() < 0)
        return true;
    const ssize_t length = recv(vhci_.fd(), bytes, sizeof bytes, MSG_DONTWAIT);
    if (length < 0)
        return true;
    const Nanoseconds now = clockNow();
    rest_.disturb(now);
    return length > 0 && usbIp_.receive(bytes, static_cast<std::size_t>(length), now);
}

std::string VhciPort::takeReady() {
    const std::string node = announced_ || vhci_.fd() < 0 ? "" : vhci_.node(node_);
    announced_ = announced_ || !node.empty();
    return node;
}

} // namespace sim
