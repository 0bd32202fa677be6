#include "sim/links/usb/DfuDevice.h"

#include <algorithm>
#include <utility>

#include "libs/zvbl/wire/Wire.h"
#include "sim/links/usb/DfuDescriptors.h"

namespace sim {

namespace {

constexpr std::uint8_t toInterface = 0x21; // class requests
constexpr std::uint8_t fromInterface = 0xA1;

enum RequestNumber : std::uint8_t { detach, dnload, upload, getStatus, clrStatus, getState, abort };

constexpr std::uint16_t statusLength = 6;
constexpr std::uint16_t aBlock = 0xFFFF;      // as long as the device's blocks are
constexpr Nanoseconds longestPoll = 0xFFFFFF; // milliseconds, in three bytes

// A device that resets or runs its own code waits until the answer before it has arrived; a host that
// does not ask for the answer gets so much longer than the poll time.
constexpr Nanoseconds afterAnswer = millisecond;
constexpr Nanoseconds withoutAnswer = 50 * millisecond;

Nanoseconds pollTime(Nanoseconds left) {
    return std::min((std::max<Nanoseconds>(left, 0) + millisecond - 1) / millisecond, longestPoll);
}

} // namespace

struct DfuDevice::Request {
    RequestNumber number;
    const char *name;
    std::uint8_t type;
    bool hasValue;
    std::uint16_t shortest; // length of its data
    std::uint16_t longest;
};

const std::vector<DfuDevice::Request> &DfuDevice::requests() {
    static const std::vector<Request> rows = {
        {RequestNumber::detach, "DETACH", toInterface, true, 0, 0},
        {RequestNumber::dnload, "DNLOAD", toInterface, true, 0, aBlock},
        {RequestNumber::upload, "UPLOAD", fromInterface, true, 1, aBlock},
        {RequestNumber::getStatus, "GETSTATUS", fromInterface, false, statusLength, statusLength},
        {RequestNumber::clrStatus, "CLRSTATUS", toInterface, false, 0, 0},
        {RequestNumber::getState, "GETSTATE", fromInterface, false, 1, 1},
        {RequestNumber::abort, "ABORT", toInterface, false, 0, 0},
    };
    return rows;
}

struct DfuDevice::Transition {
    State state;
    RequestNumber request;
    UsbAnswer (DfuDevice::*act)(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
};

// What fits which state; everything else is stalled.
const std::vector<DfuDevice::Transition> &DfuDevice::transitions() {
    using N = RequestNumber;
    static const std::vector<Transition> rows = {
        {State::idle, N::dnload, &DfuDevice::download},
        {State::idle, N::upload, &DfuDevice::upload},
        {State::idle, N::abort, &DfuDevice::toIdle},
        {State::idle, N::getStatus, &DfuDevice::getStatus},
        {State::idle, N::getState, &DfuDevice::getState},
        {State::downloadSync, N::getStatus, &DfuDevice::carryOut},
        {State::downloadSync, N::getState, &DfuDevice::getState},
        {State::downloadBusy, N::getStatus, &DfuDevice::stillBusy},
        {State::downloadIdle, N::dnload, &DfuDevice::download},
        {State::downloadIdle, N::abort, &DfuDevice::toIdle},
        {State::downloadIdle, N::getStatus, &DfuDevice::getStatus},
        {State::downloadIdle, N::getState, &DfuDevice::getState},
        {State::manifestSync, N::getStatus, &DfuDevice::leave},
        {State::manifestSync, N::getState, &DfuDevice::getState},
        {State::uploadIdle, N::upload, &DfuDevice::upload},
        {State::uploadIdle, N::abort, &DfuDevice::toIdle},
        {State::uploadIdle, N::getStatus, &DfuDevice::getStatus},
        {State::uploadIdle, N::getState, &DfuDevice::getState},
        {State::error, N::clrStatus, &DfuDevice::toIdle},
        {State::error, N::getStatus, &DfuDevice::getStatus},
        {State::error, N::getState, &DfuDevice::getState},
    };
    return rows;
}

const char *DfuDevice::nameOf(State state) {
    static const char *const names[] = {"appIDLE",          "appDETACH",   "dfuIDLE",
                                        "dfuDNLOAD-SYNC",   "dfuDNBUSY",   "dfuDNLOAD-IDLE",
                                        "dfuMANIFEST-SYNC", "dfuMANIFEST", "dfuMANIFEST-WAIT-RESET",
                                        "dfuUPLOAD-IDLE",   "dfuERROR"};
    return names[static_cast<std::size_t>(state)];
}

DfuDevice::DfuDevice(Chip &chip, Faults &faults, Log &log)
    : m_commands(chip, faults, log), m_log(log), m_transferSize(dfuTransferSize(chip)),
      m_descriptors(dfuDescriptors(chip)) {}

// ---- requests

const DfuDevice::Request *DfuDevice::requestOf(const UsbSetup &setup) const {
    const bool known = (setup.type == toInterface || setup.type == fromInterface) && setup.request < requests().size();
    const Request *request = known ? &requests()[setup.request] : nullptr;
    const bool wellFormed = request != nullptr && m_standard.configured() && setup.type == request->type &&
                            setup.index == 0 && (request->hasValue || setup.value == 0) &&
                            setup.length >= request->shortest &&
                            setup.length <= std::min(request->longest, m_transferSize);
    return wellFormed ? request : nullptr;
}

UsbAnswer DfuDevice::control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    advance(now);
    if (m_awayAt && (m_said || now >= *m_awayAt))
        return UsbAnswer::silent();
    if (m_commands.bootloader().silent())
        return UsbAnswer::silent();
    if (setup.standard())
        return m_standard.answer(setup, now);
    const Request *request = requestOf(setup);
    if (request == nullptr || (!setup.towardsHost() && out.size() != setup.length))
        return misfit("a request of a wrong form", now);
    for (const Transition &row : transitions()) {
        if (row.state == m_state && row.request == request->number) {
            const UsbAnswer answer = (this->*row.act)(setup, out, now);
            return m_commands.bootloader().silent() ? UsbAnswer::silent() : answer;
        }
    }
    return misfit(request->name, now);
}

UsbAnswer DfuDevice::misfit(const std::string &what, Nanoseconds now) {
    m_log.refused(what + ": does not fit " + nameOf(m_state));
    m_pending.reset();
    m_status = DfuStatus::errStalledPkt;
    m_state = State::error;
    return UsbAnswer::stall(now);
}

UsbAnswer DfuDevice::follow(State next, Nanoseconds now) {
    m_state = next;
    return UsbAnswer::done(now);
}

UsbAnswer DfuDevice::download(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    if (setup.length == 0)
        return follow(State::manifestSync, now);
    if (setup.value == wire::dfuReplyBlock)
        return misfit("DNLOAD of block 1", now);
    m_pending = Block{setup.value, out};
    return follow(State::downloadSync, now);
}

UsbAnswer DfuDevice::upload(const UsbSetup &setup, const Bytes &, Nanoseconds now) {
    if (setup.value == wire::dfuCommandBlock)
        return handOver(setup, m_commands.list(), now);
    if (setup.value != wire::dfuReplyBlock)
        return uploadMemory(setup, now);
    const std::optional<Bytes> reply = m_state == State::idle ? m_commands.takeReply() : std::nullopt;
    return reply ? handOver(setup, *reply, now) : misfit("UPLOAD of block 1, without a reply,", now);
}

UsbAnswer DfuDevice::uploadMemory(const UsbSetup &setup, Nanoseconds now) {
    Bytes data;
    const DfuCommands::Result result = m_commands.upload(setup.value, setup.length, now, data);
    if (result.status == DfuStatus::ok)
        return handOver(setup, data, now);
    m_status = result.status;
    m_state = State::error;
    return UsbAnswer::stall(now);
}

// A block that is shorter than what was asked for is the last one.
UsbAnswer DfuDevice::handOver(const UsbSetup &setup, const Bytes &data, Nanoseconds now) {
    const std::size_t length = std::min<std::size_t>(data.size(), setup.length);
    m_state = length < setup.length ? State::idle : State::uploadIdle;
    return UsbAnswer::done(now, Bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length)));
}

UsbAnswer DfuDevice::statusAnswer(Nanoseconds now) const {
    const auto poll = static_cast<std::uint32_t>(m_state == State::downloadBusy ? pollTime(m_busyUntil - now) : 0);
    return UsbAnswer::done(now, {static_cast<std::uint8_t>(m_status), static_cast<std::uint8_t>(poll),
                                 static_cast<std::uint8_t>(poll >> 8), static_cast<std::uint8_t>(poll >> 16),
                                 static_cast<std::uint8_t>(m_state), 0});
}

UsbAnswer DfuDevice::getStatus(const UsbSetup &, const Bytes &, Nanoseconds now) {
    return statusAnswer(now);
}

UsbAnswer DfuDevice::getState(const UsbSetup &, const Bytes &, Nanoseconds now) {
    return UsbAnswer::done(now, {static_cast<std::uint8_t>(m_state)});
}

UsbAnswer DfuDevice::toIdle(const UsbSetup &, const Bytes &, Nanoseconds now) {
    m_status = DfuStatus::ok;
    return follow(State::idle, now);
}

UsbAnswer DfuDevice::carryOut(const UsbSetup &, const Bytes &, Nanoseconds now) {
    if (!m_pending)
        return workDone(now);
    const Block block = *std::exchange(m_pending, std::nullopt);
    const DfuCommands::Result result = m_commands.download(block.number, block.data, now);
    m_status = result.status;
    m_busyUntil = result.at;
    m_ended = result.ended;
    m_state = State::downloadBusy;
    if (m_ended == Next::powerLost) {
        goAway(m_busyUntil, m_busyUntil + Bootloader::startTime);
        if (m_busyUntil <= now)
            return UsbAnswer::silent();
    } else if (m_ended == Next::reset) {
        const Nanoseconds at = now + pollTime(m_busyUntil - now) * millisecond + withoutAnswer;
        goAway(at, at + Bootloader::startTime);
    }
    // Whether it went well is told when it is done.
    UsbAnswer answer = statusAnswer(now);
    answer.data[0] = static_cast<std::uint8_t>(DfuStatus::ok);
    return answer;
}

UsbAnswer DfuDevice::workDone(Nanoseconds now) {
    m_state = m_status == DfuStatus::ok ? State::downloadIdle : State::error;
    if (m_ended == Next::reset)
        goAwayAfterAnswer(now);
    return statusAnswer(now);
}

UsbAnswer DfuDevice::stillBusy(const UsbSetup &, const Bytes &, Nanoseconds now) {
    m_log.refused("GETSTATUS: " + std::to_string(pollTime(m_busyUntil - now)) + " ms of the poll time are left");
    UsbAnswer answer = statusAnswer(now);
    answer.data[0] = static_cast<std::uint8_t>(DfuStatus::ok);
    return answer;
}

UsbAnswer DfuDevice::leave(const UsbSetup &, const Bytes &, Nanoseconds now) {
    const DfuCommands::Result result = m_commands.leave(now);
    m_status = result.status;
    m_ended = result.ended;
    m_state = m_status == DfuStatus::ok ? State::manifest : State::error;
    if (m_status == DfuStatus::ok)
        goAwayAfterAnswer(now);
    return statusAnswer(now);
}

// ---- coming and going

void DfuDevice::beFresh() {
    m_standard.reset();
    m_commands.forget();
    m_state = State::idle;
    m_status = DfuStatus::ok;
    m_pending.reset();
    m_ended = Next::end;
    m_said = false;
}

void DfuDevice::advance(Nanoseconds now) {
    if (m_backAt && now >= *m_backAt) {
        m_awayAt.reset();
        m_backAt.reset();
        ++m_attachments;
        beFresh();
    }
    if (m_state == State::downloadBusy && now >= m_busyUntil)
        m_state = State::downloadSync;
}

void DfuDevice::goAway(Nanoseconds at, std::optional<Nanoseconds> back) {
    m_awayAt = m_awayAt ? std::min(*m_awayAt, at) : at;
    m_backAt = back;
}

void DfuDevice::goAwayAfterAnswer(Nanoseconds at) {
    m_said = true;
    m_awayAt = at + afterAnswer;
    m_backAt = m_ended == Next::leave ? std::nullopt : std::optional(*m_awayAt + Bootloader::startTime);
}

void DfuDevice::delivered(Nanoseconds at) {
    if (m_said)
        goAwayAfterAnswer(at);
}

void DfuDevice::busReset(Nanoseconds now) {
    advance(now);
    if (!m_awayAt)
        beFresh();
}

UsbPresence DfuDevice::presence(Nanoseconds now) {
    advance(now);
    return {!m_awayAt || now < *m_awayAt, m_attachments, false};
}

std::optional<Nanoseconds> DfuDevice::nextEvent(Nanoseconds now) {
    advance(now);
    return m_awayAt && now < *m_awayAt ? m_awayAt : m_backAt;
}

void DfuDevice::pressReset(Nanoseconds now) {
    advance(now);
    m_commands.bootloader().reset(now);
    goAway(now, now + Bootloader::startTime);
}

void DfuDevice::losePower(Nanoseconds now) {
    advance(now);
    m_commands.bootloader().losePower(now);
    goAway(now, now + Bootloader::startTime);
}

} // namespace sim
