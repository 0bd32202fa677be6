// Getting in step with the chip on a serial line: the opening byte, and the way back after a failure.

#include <algorithm>

#include "libs/zvbl/framing/UsartFraming.h"

namespace zvbl {
namespace {

constexpr int rounds = 3;
constexpr int slowCharacters = 3;  // the quiet time is never shorter than so many
constexpr int longestBabble = 512; // characters that may come late; the longest reply is half of it

// The chip's clock may be slower than ours.
Duration withMargin(Duration limit) {
    return limit + limit / 10;
}

bool isAnswer(std::uint8_t byte) {
    return byte == wire::ack || byte == wire::nack;
}

} // namespace

// A chip that just starts may lose an opening byte, and one that was left within a command takes it for
// a part of that. So it is sent again, but never within the frame limit.
Status UsartFraming::start(const StartSettings &, Duration timeout) {
    m_timeout = timeout;
    if (const Status status = discardReceived(); status != Status::ok)
        return status;
    const TimePoint deadline = Clock::now() + timeout;
    bool heardWrong = false;
    bool wait = m_step == Step::lost;
    m_step = Step::lost;
    m_inRun = false;
    for (TimePoint now = Clock::now(); now < deadline; now = Clock::now()) {
        Bytes heard;
        Status status = wait ? awaitFrameLimit(deadline) : Status::ok;
        if (status == Status::ok)
            status = probe(std::min<Duration>(deadline - now, withMargin(m_timing.frameLimit)),
                           wait ? m_timing.quiet : m_timing.promptQuiet, heard);
        if (status == Status::gone)
            return status;
        if (status == Status::ok && isAnswer(heard.back())) {
            m_step = Step::kept;
            return Status::ok;
        }
        heardWrong = heardWrong || !heard.empty() || status == Status::outOfStep;
        wait = true;
    }
    return heardWrong ? Status::noAnswer : Status::noStart;
}

Status UsartFraming::getInStep() {
    Bytes heard;
    if (m_step == Step::doubtful) {
        // After a NACK the chip waits for an opcode, unless bytes of a damaged group are still under way.
        Status status = discardReceived();
        if (status == Status::ok)
            status = probe(std::min(m_timeout, m_timing.frameLimit), m_timing.quiet, heard);
        if (status == Status::ok && heard == Bytes{wire::nack}) {
            m_step = Step::kept;
            return status;
        }
        if (status == Status::gone)
            return status;
    }
    m_step = Step::lost;
    m_trace.remark("getting in step");
    const TimePoint bound = Clock::now() + m_timeout + rounds * withMargin(m_timing.frameLimit);
    for (int round = 0; round < rounds; ++round) {
        Status status = awaitFrameLimit(bound);
        if (status == Status::ok)
            status = probe(m_timeout, m_timing.quiet, heard);
        if (status != Status::ok)
            return status == Status::noAnswer ? Status::outOfStep : status;
        if (heard.back() == wire::nack) {
            m_step = Step::kept;
            return Status::ok;
        }
        // Nobody knows what a chip has been through that opens anew: bytes that it took for commands, perhaps. An
        // ACK that comes later is a late one.
        if (heard == Bytes{wire::ack} && m_lastHeard - m_lastSent <= m_timing.quiet + m_port.characterTime()) {
            m_trace.remark("the chip has been reset");
            return Status::outOfStep;
        }
    }
    return Status::outOfStep;
}

// Sends the opening byte and hears what comes until the line is quiet: one byte at least. Nothing that is held up on
// its way comes after an answer that came at once, so then another quiet may do.
Status UsartFraming::probe(Duration wait, Duration quietIfPrompt, Bytes &heard) {
    if (const Status status = send({wire::sync}); status != Status::ok)
        return status;
    Status status = hear(m_lastSent + wait);
    if (status == Status::ok)
        status = listenUntilQuiet(isPrompt() ? std::min(quietIfPrompt, m_timing.quiet) : m_timing.quiet);
    m_trace.received(m_heard.data(), m_heard.size());
    heard.swap(m_heard);
    m_heard.clear();
    return status;
}

bool UsartFraming::isPrompt() const {
    return m_heard.size() == 1 && isAnswer(m_heard.front()) &&
           m_lastHeard - m_lastSent <= m_timing.prompt + m_port.characterTime();
}

// Any byte more makes it the long quiet again.
Status UsartFraming::listenUntilQuiet(Duration quiet) {
    const TimePoint bound = Clock::now() + m_timeout + longestBabble * m_port.characterTime();
    Status status = Status::ok;
    while (status == Status::ok) {
        discardAllBut(longestBabble);
        if (Clock::now() >= bound)
            return neverSilent();
        status = hear(Clock::now() + std::max(quiet, slowCharacters * m_port.characterTime()));
        quiet = m_timing.quiet;
    }
    return status == Status::noAnswer ? Status::ok : status;
}

// Waits until the chip has dropped a command that it may be in, and throws away what comes meanwhile.
// The chip counts from its own answer too. outOfStep: the line is not silent until the bound.
Status UsartFraming::awaitFrameLimit(TimePoint bound) {
    bool nothingCame = true;
    for (;;) {
        const TimePoint until = std::max(m_lastSent, m_lastHeard) + withMargin(m_timing.frameLimit);
        const Status status = hear(std::min(until, bound));
        if (status == Status::ok) {
            nothingCame = false;
            discard();
        } else if (status != Status::noAnswer) {
            return status;
        } else if (until > bound) {
            return Status::outOfStep;
        } else {
            break;
        }
        if (Clock::now() > bound)
            return Status::outOfStep;
    }
    if (m_suspicion && nothingCame)
        m_trustPace = false; // the answer was no old one: this chip is faster than its line
    m_suspicion = false;
    return Status::ok;
}

} // namespace zvbl
