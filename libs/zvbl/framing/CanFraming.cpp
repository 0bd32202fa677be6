#include "libs/zvbl/framing/CanFraming.h"

#include <algorithm>

namespace zvbl {
namespace {

constexpr std::size_t frameSize = 8;
// Data bytes of a group that takes longer than the answer to the one before it.
constexpr std::size_t longGroup = 128;

std::string describe(const CanFrame &frame) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text = {digits[frame.id >> 8 & 7], digits[frame.id >> 4 & 0xF], digits[frame.id & 0xF]};
    for (std::size_t i = 0; i < frame.size; ++i)
        text += {' ', digits[frame.data[i] >> 4], digits[frame.data[i] & 0xF]};
    return text;
}

CanFrame frameOf(std::uint8_t opcode, const std::uint8_t *bytes, std::size_t size) {
    CanFrame frame{opcode, static_cast<std::uint8_t>(size), {}};
    std::copy(bytes, bytes + size, frame.data.begin());
    return frame;
}

// Two frames in a row with the same bytes: data that repeat, or one frame that came twice.
bool hasEqualNeighbours(const Bytes &reply) {
    for (std::size_t i = frameSize; i + frameSize <= reply.size(); i += frameSize)
        if (std::equal(&reply[i - frameSize], &reply[i], &reply[i]))
            return true;
    return false;
}

} // namespace

CanFraming::CanFraming(CanBus &bus, const Timing &timing, Trace &trace) : MessageFraming(timing, trace), m_bus(bus) {}

Status CanFraming::transfer(const Command &command, Bytes &reply, Duration timeout) {
    m_groupsLeft = command.groups.size();
    m_doubles = whereDoublesShow(command);
    m_hurried = command.packet && m_wentWell && m_doubles != Doubles::nowhere;
    const Status status = MessageFraming::transfer(command, reply, timeout);
    m_wentWell = status == Status::ok;
    if (m_wentWell && endsBootloader(command.opcode))
        m_chipChanged = false;
    return status;
}

// A frame is sent again when its end was disturbed, and then a receiver may have it twice: an ACK that came
// twice would be taken for the next one, and so on to the last. To wait after each ACK for its double would
// cost the packets some of their speed, and there it shows without that. A reply has another size than an
// ACK. Before the last frame of a long group the chip can't have answered yet, so an answer that is there is
// one too many.
CanFraming::Doubles CanFraming::whereDoublesShow(const Command &command) {
    if (command.reply.counted || command.reply.size > 0)
        return Doubles::inReply;
    const bool longEnd = !command.groups.empty() && command.groups.back().bytes.size() >= longGroup;
    return longEnd ? Doubles::inLastGroup : Doubles::nowhere;
}

Status CanFraming::sendOpcode(std::uint8_t opcode) {
    const Status status = discardUntil(m_hurried ? TimePoint{} : m_lastHeard + doubleTime());
    return status == Status::ok ? send({opcode, 0, {}}, Clock::now() + m_timeout) : status;
}

Status CanFraming::sendGroup(std::uint8_t opcode, const Bytes &bytes) {
    const bool lastGroup = --m_groupsLeft == 0;
    Status status = m_doubles == Doubles::nowhere ? expectSilence(opcode, doubleTime()) : Status::ok;
    for (std::size_t done = 0; done < bytes.size() && status == Status::ok; done += frameSize) {
        const std::size_t size = std::min(frameSize, bytes.size() - done);
        if (m_doubles == Doubles::inLastGroup && lastGroup && done + size == bytes.size())
            status = expectSilence(opcode, doubleTime());
        if (status == Status::ok)
            status = send(frameOf(opcode, bytes.data() + done, size), Clock::now() + m_timeout);
    }
    return status;
}

Status CanFraming::takeAnswer(std::uint8_t opcode, std::uint8_t &answer) {
    CanFrame frame;
    if (const Status status = hearAnswer(opcode, frame); status != Status::ok)
        return status;
    if (frame.size != 1) {
        m_trace.remark("not an answer");
        return Status::noAnswer;
    }
    answer = frame.data[0];
    return Status::ok;
}

Status CanFraming::takeReply(const Command &command, Bytes &reply) {
    std::size_t size = command.reply.counted ? 0 : command.reply.size + 1;
    do {
        if (const Status status = takePart(command, reply, size); status != Status::ok)
            return status;
    } while (reply.size() < size);
    // In a reply of full frames only, a frame that came twice takes the place of the next one, and the last
    // frame is left over. The checksum can miss that, as two equal frames add nothing to it, so where two
    // neighbours are equal the frame that is left over has to show. Where an ACK follows the reply, it stands
    // in the place of the ACK, and shows.
    const bool mayBePushedOut =
        size % frameSize == 0 && command.reply.end != Reply::End::ack && hasEqualNeighbours(reply);
    const Status status = unwrap(command, reply);
    return status == Status::ok && mayBePushedOut
               ? expectSilence(command.opcode, std::max(m_timing.quiet, doubleTime()))
               : status;
}

// Takes one frame of a reply. `size` is 0 until its count tells it.
Status CanFraming::takePart(const Command &command, Bytes &reply, std::size_t &size) {
    CanFrame frame;
    if (const Status status = hearAnswer(command.opcode, frame); status != Status::ok)
        return status;
    if (size == 0 && frame.size > 0)
        size = 1 + (frame.data[0] + 1U) + 1;
    if (frame.size == 0 || frame.size != std::min(frameSize, size - reply.size())) {
        m_trace.remark("a part of the reply is missing");
        return Status::noAnswer;
    }
    reply.insert(reply.end(), frame.data.begin(), frame.data.begin() + frame.size);
    return Status::ok;
}

Status CanFraming::send(const CanFrame &frame, TimePoint deadline) {
    if (m_trace.on())
        m_trace.sent(describe(frame));
    const Status status = m_bus.send(frame, deadline);
    m_lastSent = std::max<TimePoint>(Clock::now(), m_lastSent) + m_bus.frameTime(frame.size);
    return status;
}

Status CanFraming::hear(CanFrame &frame, TimePoint deadline) {
    const Status status = m_bus.receive(frame, deadline);
    if (status == Status::ok)
        m_lastHeard = Clock::now();
    return status;
}

bool CanFraming::isAnswerTo(std::uint8_t opcode, const CanFrame &frame) {
    return frame.id == opcode + wire::canFromChip;
}

void CanFraming::note(const CanFrame &frame, bool used) {
    if (!m_trace.on())
        return;
    if (used)
        m_trace.received(describe(frame));
    else
        m_trace.discarded(describe(frame));
}

// Waits for the next frame that answers this opcode. What answers another one is late.
Status CanFraming::hearAnswer(std::uint8_t opcode, CanFrame &frame) {
    const TimePoint deadline = std::max<TimePoint>(Clock::now(), m_lastSent) + m_timeout;
    for (;;) {
        const Status status = hear(frame, deadline);
        if (status != Status::ok) {
            m_trace.remark(status == Status::noAnswer ? "no answer in time" : "the answer is lost");
            if (status == Status::noAnswer)
                m_bus.explain();
            return status;
        }
        const bool right = isAnswerTo(opcode, frame);
        note(frame, right);
        if (right)
            return Status::ok;
        if (Clock::now() > deadline)
            return Status::noAnswer; // a bus full of late answers is no answer
    }
}

// Throws away what comes; with a deadline that is past, what is there.
Status CanFraming::discardUntil(TimePoint deadline) {
    const TimePoint bound = std::max<TimePoint>(deadline, Clock::now() + m_timeout);
    Status status = Status::ok;
    for (CanFrame frame; status == Status::ok && Clock::now() < bound;) {
        status = hear(frame, deadline);
        if (status == Status::ok)
            note(frame, false);
    }
    return status == Status::noAnswer ? Status::ok : status;
}

Status CanFraming::discardUntilQuiet(TimePoint bound) {
    TimePoint heard;
    Status status = Status::ok;
    do {
        heard = m_lastHeard;
        status = discardUntil(std::max<TimePoint>(Clock::now(), m_lastSent) + std::max(m_timing.quiet, doubleTime()));
    } while (status == Status::ok && m_lastHeard != heard && Clock::now() < bound);
    return status;
}

// Makes sure that no frame came twice, as far as that can be told by now.
Status CanFraming::expectSilence(std::uint8_t opcode, Duration howLong) {
    const TimePoint until = m_lastHeard + howLong;
    const TimePoint bound = std::max<TimePoint>(until, Clock::now() + m_timing.quiet);
    CanFrame frame;
    for (;;) {
        const Status status = hear(frame, until);
        if (status != Status::ok)
            return status == Status::noAnswer ? Status::ok : status;
        note(frame, false);
        if (!isAnswerTo(opcode, frame) && Clock::now() < bound)
            continue;
        m_trace.remark(isAnswerTo(opcode, frame) ? "more than the answer" : "the bus does not fall silent");
        return Status::noAnswer;
    }
}

// The disturbance, and the frame once more.
Duration CanFraming::doubleTime() const {
    return m_bus.frameTime(frameSize) * 3 / 2;
}

} // namespace zvbl
