#include "sim/ports/can/CanServer.h"

#include <algorithm>
#include <cstdio>

#include <poll.h>
#include <sys/prctl.h>

#include "sim/ports/Clock.h"
#include "sim/program/Options.h"

namespace sim {

namespace {

constexpr Nanoseconds quiet = 20 * millisecond; // the bus rests: time for the state file
constexpr Nanoseconds again = millisecond;      // behind a frame that the port could not take

// At a pace every wake-up from sleep would add its latency to the bus, as on a serial line.
constexpr Nanoseconds awakeBefore = 100 * microsecond;
constexpr Nanoseconds awakeBehind = 300 * microsecond;

} // namespace

CanServer::CanServer(Machine &machine)
    : machine_(machine), bootloader_(machine.chip, machine.faults, machine.log, nullptr, &canCommands()),
      protocol_(bootloader_, machine.log), line_(protocol_, machine.faults, machine.options.pace) {
    prctl(PR_SET_TIMERSLACK, 1UL);
}

bool CanServer::plugIn(CanPort &port, const std::string &name, std::string &error) {
    if (!port.open(error))
        return false;
    std::printf("ready %s\n", name.c_str());
    std::fflush(stdout);
    return true;
}

bool CanServer::serve(CanPort &port, const std::string &name, std::string &error) {
    if (!plugIn(port, name, error))
        return false;
    for (;;) {
        wait(port);
        if (followSignals() == Wish::end)
            break;
        const Nanoseconds now = clockNow();
        if (port.take(now))
            traffic(now);
        giveToHost(port);
        restIfIdle();
        if (!line_.hangup() || !line_.toHost().empty())
            continue;
        const std::optional<unsigned> replugMs = line_.hangup()->replugMs;
        port.drain();
        port.close();
        if (!replugMs || waitUnplugged(machine_.signals, *replugMs * millisecond) == Wish::end)
            break;
        bootloader_.losePower(clockNow());
        line_.replug();
        if (!plugIn(port, name, error))
            return false;
    }
    port.close();
    return true;
}

Wish CanServer::followSignals() {
    Wish wish = nextWish(machine_.signals);
    for (; wish == Wish::reset; wish = nextWish(machine_.signals)) {
        line_.toHost().clear();
        bootloader_.reset(clockNow());
    }
    return wish;
}

// Until something happens, or is due.
void CanServer::wait(const CanPort &port) {
    struct pollfd fds[] = {{machine_.signals, POLLIN, 0}, {port.fd(), POLLIN, 0}, {port.watchFd(), POLLIN, 0}};
    const bool pace = machine_.options.pace;
    const Nanoseconds now = clockNow();
    std::optional<Nanoseconds> due;
    if (!line_.toHost().empty())
        due = std::max(line_.toHost().front().at - (pace ? awakeBefore : 0), notBefore_);
    else if (pace && now - lastTraffic_ < awakeBehind)
        due = now;
    else if (!rested_)
        due = lastTraffic_ + quiet;
    struct timespec left {};
    if (due)
        left = timespecOf(std::max<Nanoseconds>(*due - now, 0));
    ppoll(fds, 3, due ? &left : nullptr, nullptr);
}

void CanServer::giveToHost(CanPort &port) {
    std::deque<TimedFrame> &queue = line_.toHost();
    const Nanoseconds now = clockNow();
    while (!queue.empty() && queue.front().at <= now && notBefore_ <= now) {
        traffic(now);
        if (!port.give(queue.front())) {
            notBefore_ = now + again;
            return;
        }
        queue.pop_front();
    }
}

void CanServer::traffic(Nanoseconds now) {
    lastTraffic_ = now;
    rested_ = false;
}

void CanServer::restIfIdle() {
    if (!rested_ && line_.toHost().empty() && clockNow() - lastTraffic_ >= quiet) {
        rested_ = true;
        machine_.idle();
    }
}

} // namespace sim
