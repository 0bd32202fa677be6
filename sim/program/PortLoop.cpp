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
    const std::unique_lock<std::mutex> held = port_.hold();
    port_.unplug();
    return good;
}

bool PortLoop::plugIn(std::string &error) {
    const std::unique_lock<std::mutex> held = port_.hold();
    const bool plugged = port_.plugIn(error);
    tellReady();
    return plugged;
}

void PortLoop::tellReady() {
    const std::string ready = port_.takeReady();
    if (!ready.empty()) {
        std::printf("ready %s\n", ready.c_str());
        std::fflush(stdout);
    }
}

// Until something happens, or is due.
void PortLoop::wait() {
    std::vector<struct pollfd> fds = {{signals_, POLLIN, 0}};
    std::optional<Nanoseconds> due;
    Nanoseconds now = 0;
    {
        const std::unique_lock<std::mutex> held = port_.hold();
        now = clockNow();
        due = port_.due(now);
        const std::optional<Nanoseconds> rest = port_.rest().due();
        const bool overdue = rest && *rest <= now && due && *due <= now + Rest::quiet; // see restIfIdle()
        if (rest && !overdue)
            due = std::min(due.value_or(*rest), *rest);
        for (const int fd : port_.fds())
            fds.push_back({fd, POLLIN, 0});
    }
    struct timespec left {};
    if (due)
        left = timespecOf(std::max<Nanoseconds>(*due - now, 0));
    ppoll(fds.data(), fds.size(), due ? &left : nullptr, nullptr);
}

Wish PortLoop::followSignals() {
    const std::unique_lock<std::mutex> held = port_.hold();
    Wish wish = nextWish(signals_);
    for (; wish == Wish::reset; wish = nextWish(signals_))
        port_.reset(clockNow());
    return wish;
}

bool PortLoop::work(std::string &error) {
    const std::unique_lock<std::mutex> held = port_.hold();
    const bool good = port_.work(clockNow(), error);
    tellReady();
    restIfIdle(clockNow());
    return good;
}

// Saving takes its time: not when something is due soon.
void PortLoop::restIfIdle(Nanoseconds now) {
    const std::optional<Nanoseconds> rest = port_.rest().due();
    const std::optional<Nanoseconds> due = port_.due(now);
    if (rest && *rest <= now && (!due || *due > now + Rest::quiet)) {
        port_.rest().begin();
        idle_();
    }
}

std::optional<Hangup> PortLoop::hangup() {
    const std::unique_lock<std::mutex> held = port_.hold();
    return port_.hangup();
}

// Unplugged by a fault. False when it ends there.
bool PortLoop::stayAway(const Hangup &hangup) {
    {
        const std::unique_lock<std::mutex> held = port_.hold();
        port_.drain();
        port_.unplug();
    }
    if (!hangup.replugMs || waitUnplugged(signals_, *hangup.replugMs * millisecond) == Wish::end)
        return false;
    const std::unique_lock<std::mutex> held = port_.hold();
    port_.losePower(clockNow()); // the board has its power from the port
    return true;
}

} // namespace sim
