#include "sim/ports/pty/TerminalLine.h"

#include "sim/ports/Clock.h"

namespace sim {

namespace {

constexpr std::size_t bufferSize = 16; // bytes, of a paced line

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
    return m_pace ? wakeFor(queue, bufferSize) : queue.front().at;
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
    const Nanoseconds sent = now - giveBack(length, baud, now - m_lastDue);
    const std::size_t before = m_line.toHost().size();
    for (std::size_t i = 0; i < length; ++i)
        m_line.fromHost(bytes[i], sent, baud);
    // The short groups that ask for a long answer have no room for all that is owed.
    const std::size_t answered = m_line.toHost().size() - before;
    if (answered > bufferSize)
        m_line.hasten(answered, giveBack(answered, baud, Lateness::mostAtOnce));
    return true;
}

Nanoseconds TerminalLine::giveBack(std::size_t length, unsigned baud, Nanoseconds room) {
    if (baud == 0)
        return 0;
    const Nanoseconds frame = static_cast<Nanoseconds>(length * Pacer::serialBits) * second / baud;
    const Nanoseconds time = m_lateness.offer(frame, room);
    m_lateness.given(time);
    return time;
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
