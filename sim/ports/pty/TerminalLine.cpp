#include "sim/ports/pty/TerminalLine.h"

#include <algorithm>

#include "sim/ports/Clock.h"

namespace sim {

namespace {

// At a pace the line sleeps until so many bytes are due, as the buffer of a serial port does, or the last one
// before a pause.
constexpr std::size_t bufferSize = 16;
constexpr Nanoseconds pause = 250 * microsecond;

// When to wake for what is due.
Nanoseconds wakeFor(const std::deque<TimedByte> &queue) {
    std::size_t last = 0;
    while (last + 1 < std::min(bufferSize, queue.size()) && queue[last + 1].at - queue[last].at <= pause)
        ++last;
    return queue[last].at;
}

} // namespace

TerminalLine::TerminalLine(Pty &pty, bool pace, Bootloader &bootloader, Faults &faults, Log &log)
    : m_pty(pty), m_pace(pace), m_log(log), m_protocol(bootloader), m_line(m_protocol, faults) {}

bool TerminalLine::work() {
    const bool taken = takeFromHost();
    m_pty.followClients(clockNow());
    return giveToHost() || taken;
}

std::optional<Nanoseconds> TerminalLine::due() const {
    const std::deque<TimedByte> &queue = m_line.toHost();
    if (queue.empty())
        return std::nullopt;
    return m_pace ? wakeFor(queue) : queue.front().at;
}

std::optional<Hangup> TerminalLine::hangup() const {
    return m_line.toHost().empty() ? m_line.hangup() : std::nullopt;
}

bool TerminalLine::takeFromHost() {
    std::uint8_t bytes[4096];
    const Nanoseconds now = clockNow();
    const std::size_t length = m_pty.read(bytes, sizeof bytes, now);
    if (length == 0)
        return false;
    const unsigned baud = m_pace ? m_pty.baud() : 0;
    const Nanoseconds sent = now - (baud != 0 ? giveBack(length, baud, now) : 0);
    for (std::size_t i = 0; i < length; ++i)
        m_line.fromHost(bytes[i], sent, baud);
    return true;
}

Nanoseconds TerminalLine::giveBack(std::size_t length, unsigned baud, Nanoseconds now) {
    const Nanoseconds frame = static_cast<Nanoseconds>(length * Pacer::serialBits) * second / baud;
    return m_lateness.giveBack(frame, now - m_lastDue);
}

bool TerminalLine::giveToHost() {
    std::deque<TimedByte> &queue = m_line.toHost();
    const Nanoseconds now = clockNow();
    Bytes due;
    while (!queue.empty() && queue.front().at <= now) {
        due.push_back(queue.front().byte);
        m_lastDue = queue.front().at;
        queue.pop_front();
    }
    if (due.empty())
        return false;
    if (queue.empty())
        m_lateness.add(now - m_lastDue);
    if (!m_pty.write(due))
        m_log.note("bytes for the host were lost: nobody reads");
    return true;
}

} // namespace sim
