#include "libs/zvbl/framing/UsartFraming.h"

#include <algorithm>
#include <utility>

#include "libs/zvbl/framing/Groups.h"

namespace zvbl {
namespace {

// A byte too many follows the one before it at once: this many character times tell that none does.
constexpr double silentCharacters = 1.5;
// Groups and replies of this length up tell the rate at which bytes come.
constexpr std::size_t telling = 16;
// A host that was held up longer than this part of the frame limit does not go on with a command.
constexpr double safePart = 0.8;

Duration part(Duration time, double factor) {
    return Duration(static_cast<Duration::rep>(static_cast<double>(time.count()) * factor));
}

} // namespace

UsartFraming::UsartFraming(SerialPort &port, const Timing &timing, Trace &trace)
    : m_port(port), m_timing(timing), m_trace(trace) {}

Status UsartFraming::setSpeed(unsigned long, Duration) {
    return Status::refusedCommand; // the chip measures the rate by itself
}

Status UsartFraming::transfer(const Command &command, Bytes &reply, Duration timeout) {
    m_timeout = timeout;
    reply.clear();
    if (m_step != Step::kept) {
        m_inRun = false;
        if (const Status status = getInStep(); status != Status::ok)
            return status;
    }
    m_step = Step::lost;
    // Within a run of READs a byte too many shows here or later, but nobody may take it away.
    Status status = std::exchange(m_inRun, false) ? expectSilence(0) : discardReceived();
    if (status == Status::ok)
        status = carry(command, reply);
    m_inRun = status == Status::ok && command.more && command.reply.size > 0;
    if (status == Status::ok)
        m_step = Step::kept;
    else if (status == Status::refused || status == Status::refusedCommand)
        m_step = Step::doubtful;
    return status;
}

Status UsartFraming::carry(const Command &command, Bytes &reply) {
    // What follows a packet's answers shows in its last group or reply; other commands can wait and see.
    const double pause = command.packet ? 0 : silentCharacters;
    const auto encoded = [&](std::size_t group) {
        return group < command.groups.size() ? encodeGroup(command.groups[group], command.reply) : Bytes();
    };
    // A group is made while the answer to what goes before it is under way: nothing waits for it then.
    Bytes next;
    Status status = ask(encodeOpcode(command.opcode), Status::refusedCommand, [&] { next = encoded(0); });
    for (std::size_t group = 0; group < command.groups.size() && status == Status::ok; ++group) {
        status = expectSilence(pause);
        const Bytes bytes = std::exchange(next, {});
        if (status == Status::ok)
            status = isHeldUp() ? Status::noAnswer : ask(bytes, Status::refused, [&] { next = encoded(group + 1); });
    }
    if (status == Status::ok)
        status = takeReply(command.reply, reply);
    if (status != Status::ok || command.more)
        return status;
    // All answers are there: a device that goes away now, in a reset, has done what it was told.
    return expectSilence(silentCharacters) == Status::noAnswer ? Status::noAnswer : Status::ok;
}

// Sends one group, does something meanwhile, and takes its answer.
Status UsartFraming::ask(const Bytes &bytes, Status ifRefused, const std::function<void()> &meanwhile) {
    const TimePoint from = std::max<TimePoint>(Clock::now(), m_lastSent);
    if (const Status status = send(bytes); status != Status::ok)
        return status;
    meanwhile();
    if (const Status status = takeAnswer(ifRefused); status != Status::ok)
        return status;
    if (!isTooEarly(bytes.size(), from)) {
        // A line that is faster than its rate has carried what was answered, whatever the rate says.
        if (!m_paced || !m_trustPace)
            m_lastSent = std::min(m_lastSent, m_lastHeard);
        return Status::ok;
    }
    m_trace.remark("an answer before its question was out");
    m_suspicion = true;
    return Status::noAnswer;
}

Status UsartFraming::takeAnswer(Status ifRefused) {
    Bytes answer;
    if (const Status status = take(1, answer); status != Status::ok)
        return status;
    if (answer[0] == wire::ack)
        return Status::ok;
    if (answer[0] == wire::nack)
        return ifRefused;
    m_trace.remark("not an answer");
    return Status::noAnswer;
}

Status UsartFraming::takeReply(const Reply &expected, Bytes &reply) {
    std::size_t size = expected.size;
    if (expected.counted) {
        Bytes count;
        if (const Status status = take(1, count); status != Status::ok)
            return status;
        size = count[0] + 1U;
    }
    const std::size_t checks = expected.end == Reply::End::sum ? 1 : 0;
    if (const Status status = take(size + checks, reply); status != Status::ok)
        return status;
    if (checks) {
        const bool right = sumOf(reply) == 0;
        reply.pop_back();
        if (!right) {
            m_trace.remark("wrong checksum");
            return Status::noAnswer;
        }
    }
    return expected.end == Reply::End::ack ? takeAnswer(Status::refused) : Status::ok;
}

// A byte after the last one expected means that an answer was doubled or a byte slipped in. What the line
// has not yet carried, by its pace, cannot have been answered, so that time is waited for as well: a host
// that was held up may have heard an old answer late enough to take it for a new one.
Status UsartFraming::expectSilence(double characters) {
    Status status = Status::ok;
    if (m_heard.empty()) {
        const TimePoint from = m_paced && m_trustPace ? std::max<TimePoint>(Clock::now(), m_lastSent) : Clock::now();
        status = hear(characters > 0 ? from + part(m_port.characterTime(), characters) : TimePoint{});
    }
    if (status == Status::ok) {
        m_trace.remark("more than the answer");
        discard();
        return Status::noAnswer;
    }
    return status == Status::noAnswer ? Status::ok : status;
}

// Whether this process was stopped so long that the chip may have dropped the command: what we sent on
// would be read as new commands.
bool UsartFraming::isHeldUp() {
    if (Clock::now() - m_lastHeard < part(m_timing.frameLimit, safePart))
        return false;
    m_trace.remark("held up for too long to go on");
    return true;
}

Status UsartFraming::send(const Bytes &bytes) {
    m_trace.sent(bytes.data(), bytes.size());
    const Status status = m_port.send(bytes, Clock::now() + m_timeout);
    const Duration onLine = m_port.characterTime() * static_cast<Duration::rep>(bytes.size());
    m_lastSent = std::max<TimePoint>(Clock::now(), m_lastSent) + onLine;
    return status;
}

// Takes exactly so many bytes. The timeout counts from the last byte either way.
Status UsartFraming::take(std::size_t count, Bytes &bytes) {
    TimePoint first = m_heard.empty() ? TimePoint::max() : m_lastHeard;
    while (m_heard.size() < count) {
        const Status status = hear(std::max<TimePoint>(Clock::now(), m_lastSent) + m_timeout);
        if (status != Status::ok) {
            m_trace.received(m_heard.data(), m_heard.size());
            m_heard.clear();
            m_trace.remark(status == Status::noAnswer ? "no answer in time" : "the answer is lost");
            return status;
        }
        first = std::min(first, m_lastHeard);
    }
    learnPace(count, m_lastHeard - first);
    const auto end = m_heard.begin() + static_cast<std::ptrdiff_t>(count);
    bytes.assign(m_heard.begin(), end);
    m_heard.erase(m_heard.begin(), end);
    m_trace.received(bytes.data(), bytes.size());
    return Status::ok;
}

Status UsartFraming::hear(TimePoint deadline) {
    const Status status = m_port.receive(m_heard, deadline);
    if (status == Status::ok)
        m_lastHeard = Clock::now();
    return status;
}

void UsartFraming::discard() {
    discardAllBut(0);
}

void UsartFraming::discardAllBut(std::size_t last) {
    const std::size_t count = m_heard.size() - std::min(last, m_heard.size());
    m_trace.discarded(m_heard.data(), count);
    m_heard.erase(m_heard.begin(), m_heard.begin() + static_cast<std::ptrdiff_t>(count));
}

// Throws away what has arrived so far. noAnswer: it does not end.
Status UsartFraming::discardReceived() {
    const TimePoint bound = Clock::now() + m_timing.frameLimit;
    Status status = Status::ok;
    while (status == Status::ok) {
        discard();
        status = hear(TimePoint{});
        if (status == Status::ok && Clock::now() >= bound) {
            discard();
            return neverSilent();
        }
    }
    return status == Status::noAnswer ? Status::ok : status;
}

Status UsartFraming::neverSilent() {
    m_trace.remark("the line does not fall silent");
    return Status::noAnswer;
}

void UsartFraming::learnPace(std::size_t count, Duration took) {
    if (count >= telling)
        m_paced = took > part(m_port.characterTime(), 0.5 * static_cast<double>(count));
}

bool UsartFraming::isTooEarly(std::size_t sent, TimePoint from) const {
    return m_paced && m_trustPace && sent >= telling &&
           m_lastHeard - from < part(m_port.characterTime(), 0.5 * static_cast<double>(sent));
}

} // namespace zvbl
