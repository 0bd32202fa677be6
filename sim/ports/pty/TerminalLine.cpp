#include "sim/ports/pty/TerminalLine.h"

#include "sim/ports/Clock.h"

namespace sim {

namespace {

// At a pace every wake-up from sleep would add its latency to the line. So this close before a byte is
// due, and this long behind one, when the host is about to go on, the line stays awake.
constexpr Nanoseconds awakeBefore = 100 * microsecond;
constexpr Nanoseconds awakeBehind = 300 * microsecond;

} // namespace

TerminalLine::TerminalLine(Pty &pty, bool pace, Bootloader &bootloader, Faults &faults, Log &log)
    : pty_(pty), pace_(pace), log_(log), protocol_(bootloader), line_(protocol_, faults) {}

bool TerminalLine::work() {
    const bool taken = takeFromHost();
    pty_.followClients(clockNow());
    return giveToHost() || taken;
}

std::optional<Nanoseconds> TerminalLine::due(Nanoseconds now) const {
    if (!line_.toHost().empty())
        return line_.toHost().front().at - (pace_ ? awakeBefore : 0);
    return pace_ && now - lastTraffic_ < awakeBehind ? std::optional(now) : std::nullopt;
}

std::optional<Hangup> TerminalLine::hangup() const {
    return line_.toHost().empty() ? line_.hangup() : std::nullopt;
}

bool TerminalLine::takeFromHost() {
    std::uint8_t bytes[4096];
    const Nanoseconds now = clockNow();
    const std::size_t length = pty_.read(bytes, sizeof bytes, now);
    if (length == 0)
        return false;
    lastTraffic_ = now;
    const unsigned baud = pace_ ? pty_.baud() : 0;
    for (std::size_t i = 0; i < length; ++i)
        line_.fromHost(bytes[i], now, baud);
    return true;
}

bool TerminalLine::giveToHost() {
    std::deque<TimedByte> &queue = line_.toHost();
    const Nanoseconds now = clockNow();
    Bytes due;
    while (!queue.empty() && queue.front().at <= now) {
        due.push_back(queue.front().byte);
        queue.pop_front();
    }
    if (due.empty())
        return false;
    lastTraffic_ = now;
    if (!pty_.write(due))
        log_.note("bytes for the host were lost: nobody reads");
    return true;
}

} // namespace sim
