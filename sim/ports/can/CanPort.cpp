#include "sim/ports/can/CanPort.h"

#include <algorithm>

#include "sim/ports/Clock.h"

namespace sim {

namespace {

constexpr Nanoseconds again = millisecond; // after a frame that the end could not take
constexpr std::size_t bufferSize = 2;      // frames, of a paced bus
constexpr Nanoseconds bitsOfShortest = 50; // of a frame

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
    const Nanoseconds back =
        m_pace ? m_lateness.offer(bitsOfShortest * second / m_protocol.speed(now), now - m_lastDue) : 0;
    if (m_end->take(now - back)) {
        m_lateness.given(back);
        m_rest.disturb(now);
    }
    giveToHost();
    return true;
}

std::optional<Nanoseconds> CanPort::due(Nanoseconds) {
    const std::deque<TimedFrame> &queue = m_line.toHost();
    if (queue.empty())
        return std::nullopt;
    return std::max(m_pace ? wakeFor(queue, bufferSize) : queue.front().at, m_notBefore);
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
        m_lastDue = queue.front().at;
        queue.pop_front();
        if (queue.empty())
            m_lateness.add(now - m_lastDue);
    }
}

std::optional<Hangup> CanPort::hangup() const {
    return m_line.toHost().empty() ? m_line.hangup() : std::nullopt;
}

} // namespace sim
