// The states of a USB DFU device: waiting until it is done, and the way back to dfuIDLE.

#include <algorithm>

#include "libs/zvbl/framing/DfuFraming.h"
#include "libs/zvbl/framing/DfuNames.h"

namespace zvbl {
namespace {

constexpr std::size_t statusSize = 6;
constexpr int recoveryRounds = 5;
constexpr auto shortestPoll = std::chrono::milliseconds(1);

} // namespace

// The device tells how long it will be busy: that is waited for, and the timeout on top of the longest time
// that it told, counted from its first answer. What it tells is believed up to a limit: 24 bits are hours.
Status DfuFraming::awaitDone(bool resets) {
    std::optional<TimePoint> first;
    TimePoint limit{};
    for (;;) {
        DfuStatus answer;
        const Status status = getStatus(answer);
        // It takes a GETSTATUS to carry the command out, and a refusal would not make it leave.
        if (status == Status::gone && resets && first)
            return Status::ok;
        if (status != Status::ok)
            return status;
        if (answer.state == dfuError || answer.status != dfuOk)
            return refusalOf(answer);
        if (answer.state == dfuDownloadIdle) {
            m_state = State::downloadIdle;
            return Status::ok;
        }
        if (answer.state != dfuDownloadBusy && answer.state != dfuDownloadSync)
            return damaged("not a state that belongs here");
        // No time at all is one to be asked at once, but not again and again.
        const Duration asked = first ? std::max(answer.pollTime, shortestPoll) : answer.pollTime;
        const Duration poll = std::min<Duration>(asked, m_timing.longestPoll);
        const TimePoint now = Clock::now();
        first = first.value_or(now);
        limit = std::max(limit, *first + poll + m_timeout);
        if (now + poll > limit)
            return damaged("busy for too long");
        if (const Status waited = m_port.wait(poll); waited != Status::ok)
            return waited;
    }
}

// Into dfuIDLE, unless the device is in the other state that will do.
Status DfuFraming::toIdle(State orElse) {
    if (m_state == State::idle || m_state == orElse)
        return Status::ok;
    m_state = State::lost;
    const Status status = m_port.send(DfuRequest::abort, 0, {}, m_timeout);
    if (status == Status::ok)
        m_state = State::idle;
    return status == Status::refused ? refusal() : status;
}

// Brings a device in any state to dfuIDLE. GETSTATE first: GETSTATUS would carry out what was given to the
// device last, and that call has failed long ago.
Status DfuFraming::recover() {
    m_pointer.reset();
    for (int round = 0; round < recoveryRounds; ++round) {
        Bytes state;
        Status status = m_port.fetch(DfuRequest::getState, 0, 1, state, m_timeout);
        if (status != Status::ok)
            return status;
        if (state.size() != 1)
            return damaged("a short answer");
        m_trace.remark(dfuStateName(state[0]));
        if (state[0] == dfuIdle) {
            m_state = State::idle;
            return Status::ok;
        }
        status = recoverFrom(state[0]);
        if (status == Status::gone || status == Status::noAnswer)
            return status;
    }
    return damaged("it does not become idle");
}

Status DfuFraming::recoverFrom(std::uint8_t state) {
    switch (state) {
    case dfuDownloadSync:
    case dfuDownloadIdle:
    case dfuManifestSync:
    case dfuUploadIdle: return m_port.send(DfuRequest::abort, 0, {}, m_timeout);
    case dfuDownloadBusy: return awaitDone(false);
    case dfuError: return m_port.send(DfuRequest::clearStatus, 0, {}, m_timeout);
    default: return damaged("it has left its bootloader");
    }
}

Status DfuFraming::getStatus(DfuStatus &answer) {
    Bytes bytes;
    const Status status = m_port.fetch(DfuRequest::getStatus, 0, statusSize, bytes, m_timeout);
    if (status != Status::ok)
        return status == Status::refused ? damaged("no status") : status;
    if (bytes.size() != statusSize)
        return damaged("a short answer");
    answer.status = bytes[0];
    answer.pollTime = std::chrono::milliseconds(bytes[1] | bytes[2] << 8 | bytes[3] << 16);
    answer.state = bytes[4];
    std::string text = dfuStateName(answer.state);
    if (answer.status != dfuOk)
        text += ", " + dfuStatusName(answer.status);
    if (answer.state == dfuDownloadBusy)
        text += ", ask again in " + std::to_string(answer.pollTime.count()) + " ms";
    m_trace.remark(text);
    return Status::ok;
}

// What a stalled request was refused for.
Status DfuFraming::refusal() {
    DfuStatus answer;
    const Status status = getStatus(answer);
    return status == Status::ok ? refusalOf(answer) : status;
}

Status DfuFraming::refusalOf(const DfuStatus &answer) {
    m_state = State::lost;
    if (answer.state == dfuError && m_port.send(DfuRequest::clearStatus, 0, {}, m_timeout) == Status::ok)
        m_state = State::idle;
    const bool unknown =
        answer.status == dfuErrVendor || answer.status == dfuErrStalledPacket || answer.status == dfuOk;
    return unknown ? Status::refusedCommand : Status::refused;
}

Status DfuFraming::damaged(const char *why) {
    m_trace.remark(why);
    return Status::noAnswer;
}

} // namespace zvbl
