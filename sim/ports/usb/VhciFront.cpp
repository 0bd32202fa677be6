#include "sim/ports/usb/VhciFront.h"

#include <algorithm>
#include <cstdio>

#include <poll.h>
#include <sys/socket.h>

#include "sim/ports/Clock.h"

namespace sim {

namespace {

constexpr Nanoseconds quiet = 20 * millisecond;         // the bus rests: time for the state file
constexpr Nanoseconds untilAnnounced = 5 * millisecond; // how often to look whether a driver has made its node

} // namespace

bool VhciFront::serve(std::string &error) {
    while (followPresence(error) && !ended_) {
        wait();
        if (followSignals() == Wish::end)
            return true;
        giveToHost();
        if (!takeFromHost())
            return true;
        announce();
        restIfIdle();
    }
    return ended_;
}

// Unplugs and plugs in as the device goes and comes.
bool VhciFront::followPresence(std::string &error) {
    const UsbPresence presence = device_.presence(clockNow());
    ended_ = presence.forGood;
    if (!presence.attached || presence.attachments != attachments_)
        vhci_.unplug();
    return !presence.attached || vhci_.fd() >= 0 || plugIn(error);
}

bool VhciFront::plugIn(std::string &error) {
    usbIp_.forget();
    announced_ = false;
    if (!vhci_.plugIn(UsbSpeed::full, error))
        return false;
    const Nanoseconds now = clockNow();
    device_.busReset(now);
    attachments_ = device_.presence(now).attachments;
    return true;
}

Wish VhciFront::followSignals() {
    Wish wish = nextWish(machine_.signals);
    for (; wish == Wish::reset; wish = nextWish(machine_.signals))
        device_.pressReset(clockNow());
    return wish;
}

// Until something happens, or is due.
void VhciFront::wait() {
    struct pollfd fds[] = {{machine_.signals, POLLIN, 0}, {vhci_.fd(), POLLIN, 0}};
    const Nanoseconds now = clockNow();
    std::optional<Nanoseconds> due = usbIp_.nextDue(now);
    const auto noLaterThan = [&due](Nanoseconds time) { due = due ? std::min(*due, time) : time; };
    if (!announced_ && vhci_.fd() >= 0)
        noLaterThan(now + untilAnnounced);
    if (!rested_)
        noLaterThan(lastTraffic_ + quiet);
    struct timespec left {};
    if (due)
        left = timespecOf(std::max<Nanoseconds>(*due - now, 0));
    ppoll(fds, 2, due ? &left : nullptr, nullptr);
}

void VhciFront::giveToHost() {
    const Bytes bytes = usbIp_.takeDue(clockNow());
    if (!bytes.empty() && vhci_.fd() >= 0)
        send(vhci_.fd(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

// False when somebody has taken the device away from the kernel.
bool VhciFront::takeFromHost() {
    std::uint8_t bytes[65536];
    if (vhci_.fd() < 0)
        return true;
    const ssize_t length = recv(vhci_.fd(), bytes, sizeof bytes, MSG_DONTWAIT);
    if (length < 0)
        return true;
    lastTraffic_ = clockNow();
    rested_ = false;
    return length > 0 && usbIp_.receive(bytes, static_cast<std::size_t>(length), lastTraffic_);
}

void VhciFront::announce() {
    const std::string node = announced_ || vhci_.fd() < 0 ? "" : vhci_.node(node_);
    if (!node.empty()) {
        announced_ = true;
        std::printf("ready %s\n", node.c_str());
        std::fflush(stdout);
    }
}

void VhciFront::restIfIdle() {
    if (!rested_ && clockNow() - lastTraffic_ >= quiet) {
        rested_ = true;
        machine_.idle();
    }
}

} // namespace sim
