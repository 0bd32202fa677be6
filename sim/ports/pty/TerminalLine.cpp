#include "sim/ports/pty/TerminalLine.h"

#include "sim/ports/Clock.h"

namespace sim {

namespace {

// At a pace every wake-up from sleep would add its latency to the line. So this close before a byte is
// due, and this long after one, when the host is about to go on, the line stays awake.
constexpr Nanoseconds awakeBefore = 100 * microsecond;
constexpr Nanoseconds awakeBehind = 300 * microsecond;

} // namespace

TerminalLine::TerminalLine(Pty &pty, bool pace, Bootloader &bootloader, Faults &faults, Log &log)
    : m_pty(pty), m_pace(pace), m_log(log), m_protocol(bootloader), m_line(m_protocol, faults) {}

bool TerminalLine::work() {
    const bool taken = takeFromHost();
    m_pty.followClients(clockNow());
    return giveToHost() || taken;
}

std::optional<Nanoseconds> TerminalLine::due(Nanoseconds now) const {
    if (!m_line.toHost().empty())
        return m_line.toHost().front().at - (m_pace ? awakeBefore : 0);
    return m_pace && now - m_lastTraffic < awakeBehind ? std::optional(now) : std::nullopt;
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
    m_lastTraffic = now;
    const unsigned baud = m_pace ? m_pty.baud() : 0;
    for (std::size_t i = 0; i < length; ++i)
        m_line.fromHost(bytes[i], now, baud);
    return true;
}

bool TerminalLine::giveToHost() {
    std::deque<TimedByte> &queue = m_line.toHost();
    const Nanoseconds now = clockNow();
    Bytes due;
    while (!queue.empty() && queue.front().at <= now) {
        due.push_back(queue.front().byte);
        queue.pop_front();
    }
    if (due.empty())
        return false;
    m_lastTraffic = now;
    if (!m_pty.write(due))
        m_log.note("bytes for the host were lost: nobody reads");
    return true;
}

} // namespace sim
