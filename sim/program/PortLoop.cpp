#include "sim/program/PortLoop.h"

#include <algorithm>
#include <cstdio>

#include <poll.h>

#include "sim/ports/Clock.h"

namespace sim {

bool PortLoop::run(std::string &error) {
    bool good = plugIn(error);
    while (good) {
        wait();
        if (followSignals() == Wish::end)
            break;
        good = work(error);
        const std::optional<Hangup> unplugged = hangup();
        if (!good || !unplugged)
            continue;
        if (!stayAway(*unplugged))
            return true;
        good = plugIn(error);
    }
    const std::unique_lock<std::mutex> held = m_port.hold();
    m_port.unplug();
    return good;
}

bool PortLoop::plugIn(std::string &error) {
    const std::unique_lock<std::mutex> held = m_port.hold();
    const bool plugged = m_port.plugIn(error);
    tellReady();
    return plugged;
}

void PortLoop::tellReady() {
    const std::string ready = m_port.takeReady();
    if (!ready.empty()) {
        std::printf("ready %s\n", ready.c_str());
        std::fflush(stdout);
    }
}

// Until something happens, or is due.
void PortLoop::wait() {
    std::vector<struct pollfd> fds = {{m_signals, POLLIN, 0}};
    std::optional<Nanoseconds> due;
    Nanoseconds now = 0;
    {
        const std::unique_lock<std::mutex> held = m_port.hold();
        now = clockNow();
        due = m_port.due(now);
        const std::optional<Nanoseconds> rest = m_port.rest().due();
        const bool overdue = rest && *rest <= now && due && *due <= now + Rest::quiet; // see restIfIdle()
        if (rest && !overdue)
            due = std::min(due.value_or(*rest), *rest);
        for (const int fd : m_port.fds())
            fds.push_back({fd, POLLIN, 0});
    }
    struct timespec left {};
    if (due)
        left = timespecOf(std::max<Nanoseconds>(*due - now, 0));
    ppoll(fds.data(), fds.size(), due ? &left : nullptr, nullptr);
}

Wish PortLoop::followSignals() {
    const std::unique_lock<std::mutex> held = m_port.hold();
    Wish wish = nextWish(m_signals);
    for (; wish == Wish::reset; wish = nextWish(m_signals))
        m_port.reset(clockNow());
    return wish;
}

bool PortLoop::work(std::string &error) {
    const std::unique_lock<std::mutex> held = m_port.hold();
    const bool good = m_port.work(clockNow(), error);
    tellReady();
    restIfIdle(clockNow());
    return good;
}

// Saving takes its time: not when something is due soon.
void PortLoop::restIfIdle(Nanoseconds now) {
    const std::optional<Nanoseconds> rest = m_port.rest().due();
    const std::optional<Nanoseconds> due = m_port.due(now);
    if (rest && *rest <= now && (!due || *due > now + Rest::quiet)) {
        m_port.rest().begin();
        m_idle();
    }
}

std::optional<Hangup> PortLoop::hangup() {
    const std::unique_lock<std::mutex> held = m_port.hold();
    return m_port.hangup();
}

// Unplugged by a fault. False when it ends there.
bool PortLoop::stayAway(const Hangup &hangup) {
    {
        const std::unique_lock<std::mutex> held = m_port.hold();
        m_port.drain();
        m_port.unplug();
    }
    if (!hangup.replugMs || waitUnplugged(m_signals, *hangup.replugMs * millisecond) == Wish::end)
        return false;
    const std::unique_lock<std::mutex> held = m_port.hold();
    m_port.losePower(clockNow()); // the board has its power from the port
    return true;
}

} // namespace sim
