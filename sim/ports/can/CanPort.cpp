#include "sim/ports/can/CanPort.h"

#include <algorithm>

#include "sim/ports/Clock.h"

namespace sim {

namespace {

constexpr Nanoseconds again = millisecond; // after a frame that the end could not take

// At a pace every wake-up from sleep would add its latency to the bus, as on a serial line.
constexpr Nanoseconds awakeBefore = 100 * microsecond;
constexpr Nanoseconds awakeAfter = 300 * microsecond;

} // namespace

CanPort::CanPort(const Machine &machine, std::string name)
    : name_(std::move(name)), pace_(machine.pace),
      bootloader_(machine.chip, machine.faults, machine.log, nullptr, &canCommands()),
      protocol_(bootloader_, machine.log), line_(protocol_, machine.faults, machine.pace) {}

bool CanPort::plugIn(std::string &error) {
    if (!end_->open(error))
        return false;
    ready_ = name_;
    return true;
}

void CanPort::reset(Nanoseconds now) {
    line_.toHost().clear();
    bootloader_.reset(now);
}

void CanPort::losePower(Nanoseconds now) {
    bootloader_.losePower(now);
    line_.replug();
}

bool CanPort::work(Nanoseconds now, std::string &) {
    if (end_->take(now))
        rest_.disturb(now);
    giveToHost();
    return true;
}

std::optional<Nanoseconds> CanPort::due(Nanoseconds now) {
    if (!line_.toHost().empty())
        return std::max(line_.toHost().front().at - (pace_ ? awakeBefore : 0), notBefore_);
    return pace_ && now - rest_.lastTraffic() < awakeAfter ? std::optional(now) : std::nullopt;
}

void CanPort::giveToHost() {
    std::deque<TimedFrame> &queue = line_.toHost();
    const Nanoseconds now = clockNow();
    while (!queue.empty() && queue.front().at <= now && notBefore_ <= now) {
        rest_.disturb(now);
        if (!end_->give(queue.front())) {
            notBefore_ = now + again;
            return;
        }
        queue.pop_front();
    }
}

std::optional<Hangup> CanPort::hangup() const {
    return line_.toHost().empty() ? line_.hangup() : std::nullopt;
}

} // namespace sim
