#include "libs/zvbl/framing/SpiFraming.h"

#include <algorithm>
#include <limits>

#include "libs/zvbl/Polling.h"
#include "libs/zvbl/framing/Groups.h"

namespace zvbl {
namespace {

constexpr unsigned long usualSpeed = 150000;
constexpr std::size_t answerSize = 2;                            // the start byte and the answer
constexpr auto longestPatience = std::chrono::milliseconds(200); // for one opening byte

} // namespace

Status SpiFraming::start(const StartSettings &settings, Duration timeout) {
    const unsigned long speed = settings.rate ? settings.rate : usualSpeed;
    if (speed > std::numeric_limits<std::uint32_t>::max())
        return Status::badArgument;
    if (const Status status = m_port.setSpeed(static_cast<std::uint32_t>(speed)); status != Status::ok)
        return status;
    m_timeout = timeout;
    const Status status = open();
    m_inStep = status == Status::ok;
    return status;
}

Status SpiFraming::getInStep() {
    const Status status = open();
    return status == Status::ok || status == Status::gone ? status : Status::outOfStep;
}

// Sends the opening byte until it is answered by NACK, which only a chip says that waits for an opcode. An ACK
// tells less: a chip that was reset says it once, and so does one that ends an old command just now.
Status SpiFraming::open() {
    const TimePoint end = Clock::now() + m_timeout;
    Duration patience = m_timing.quiet;
    bool answered = false;
    for (TimePoint now = Clock::now(); now < end; now = Clock::now()) {
        const TimePoint roundEnd = std::min<TimePoint>(now + patience, end);
        std::uint8_t answer = 0;
        const Status status = openOnce(roundEnd, answer);
        if (status == Status::gone || (status == Status::ok && answer == wire::nack))
            return status;
        answered = answered || status == Status::ok;
        if (status == Status::ok && answer == wire::ack)
            continue;
        std::this_thread::sleep_until(roundEnd); // a line that nobody drives is no reason to hurry
        patience = std::min<Duration>(2 * patience, longestPatience);
    }
    return answered ? Status::noAnswer : Status::noStart;
}

Status SpiFraming::openOnce(TimePoint deadline, std::uint8_t &answer) {
    Bytes bytes;
    Status status = send({wire::sync}, answerSize);
    if (status == Status::ok)
        status = hear(1, deadline);
    if (status != Status::ok)
        return status;
    take(1, bytes);
    answer = bytes[0];
    return Status::ok;
}

Status SpiFraming::transfer(const Command &command, Bytes &reply, Duration timeout) {
    m_toSend = command.groups.size();
    m_toFetch = command.reply.size > 0 ? 1 + command.reply.size + 1 : 0;
    return MessageFraming::transfer(command, reply, timeout);
}

Status SpiFraming::sendOpcode(std::uint8_t opcode) {
    return send(encodeOpcode(opcode), answerSize + (m_toSend == 0 ? m_toFetch : 0));
}

Status SpiFraming::sendGroup(std::uint8_t, const Bytes &bytes) {
    --m_toSend;
    return send(bytes, answerSize + (m_toSend == 0 ? m_toFetch : 0));
}

// Sends a message and has a first look at its answer. The chip throws away what was not fetched before.
Status SpiFraming::send(const Bytes &bytes, std::size_t fetch) {
    Bytes message(1 + bytes.size(), wire::spiStart);
    std::copy(bytes.begin(), bytes.end(), message.begin() + 1);
    m_trace.sent(message.data(), message.size());
    m_heard.clear();
    return m_port.exchange(message, fetch, m_heard);
}

Status SpiFraming::takeAnswer(std::uint8_t, std::uint8_t &answer) {
    if (const Status status = hear(1, Clock::now() + m_timeout); status != Status::ok)
        return status;
    Bytes bytes;
    take(1, bytes);
    answer = bytes[0];
    return Status::ok;
}

Status SpiFraming::takeReply(const Command &command, Bytes &reply) {
    const TimePoint deadline = Clock::now() + m_timeout;
    std::size_t size = command.reply.size + 1;
    if (command.reply.counted) {
        if (const Status status = hear(1, deadline); status != Status::ok)
            return status;
        size = m_heard[1] + 3U;
    }
    if (const Status status = hear(size, deadline); status != Status::ok)
        return status;
    take(size, reply);
    return unwrap(command, reply);
}

// Fetches until the next answer is there with so many bytes after its start byte.
Status SpiFraming::hear(std::size_t count, TimePoint deadline) {
    Polling polling(deadline);
    for (;;) {
        m_heard.erase(m_heard.begin(), std::find_if(m_heard.begin(), m_heard.end(),
                                                    [](std::uint8_t byte) { return byte != wire::spiIdle; }));
        if (!m_heard.empty() && m_heard[0] != wire::spiStart) {
            m_trace.discarded(m_heard.data(), m_heard.size());
            m_trace.remark("not an answer");
            return Status::noAnswer;
        }
        if (m_heard.size() >= 1 + count)
            return Status::ok;
        if (m_heard.empty() && !polling.again()) {
            m_trace.remark("no answer in time");
            return Status::noAnswer;
        }
        const std::size_t missing = m_heard.empty() ? answerSize : 1 + count - m_heard.size();
        if (const Status status = m_port.exchange({}, missing, m_heard); status != Status::ok)
            return status;
    }
}

// Takes the start byte and so many bytes after it, which are there.
void SpiFraming::take(std::size_t count, Bytes &bytes) {
    const auto end = m_heard.begin() + 1 + static_cast<std::ptrdiff_t>(count);
    m_trace.received(m_heard.data(), 1 + count);
    bytes.assign(m_heard.begin() + 1, end);
    m_heard.erase(m_heard.begin(), end);
}

} // namespace zvbl
