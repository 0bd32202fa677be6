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
    : m_name(std::move(name)), m_pace(machine.pace),
      m_bootloader(machine.chip, machine.faults, machine.log, nullptr, &canCommands()),
      m_protocol(m_bootloader, machine.log), m_line(m_protocol, machine.faults, machine.pace) {}

bool CanPort::plugIn(std::string &error) {
    if (!m_end->open(error))
        return false;
    m_ready = m_name;
    return true;
}

void CanPort::reset(Nanoseconds now) {
    m_line.toHost().clear();
    m_bootloader.reset(now);
}

void CanPort::losePower(Nanoseconds now) {
    m_bootloader.losePower(now);
    m_line.replug();
}

bool CanPort::work(Nanoseconds now, std::string &) {
    if (m_end->take(now))
        m_rest.disturb(now);
    giveToHost();
    return true;
}

std::optional<Nanoseconds> CanPort::due(Nanoseconds now) {
    if (!m_line.toHost().empty())
        return std::max(m_line.toHost().front().at - (m_pace ? awakeBefore : 0), m_notBefore);
    return m_pace && now - m_rest.lastTraffic() < awakeAfter ? std::optional(now) : std::nullopt;
}

void CanPort::giveToHost() {
    std::deque<TimedFrame> &queue = m_line.toHost();
    const Nanoseconds now = clockNow();
    while (!queue.empty() && queue.front().at <= now && m_notBefore <= now) {
        m_rest.disturb(now);
        if (!m_end->give(queue.front())) {
            m_notBefore = now + again;
            return;
        }
        queue.pop_front();
    }
}

std::optional<Hangup> CanPort::hangup() const {
    return m_line.toHost().empty() ? m_line.hangup() : std::nullopt;
}

} // namespace sim
