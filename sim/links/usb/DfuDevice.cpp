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
constexpr Nanoseconds longestPoll = 0xFFFFFF; // milliseconds, in three bytes

// A device that resets or runs its own code waits until the answer in front of it has arrived; a host that
// does not ask for the answer gets so much longer than the poll time.
constexpr Nanoseconds behindAnswer = millisecond;
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
        {RequestNumber::dnload, "DNLOAD", toInterface, true, 0, dfuTransferSize},
        {RequestNumber::upload, "UPLOAD", fromInterface, true, 1, dfuTransferSize},
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
    : commands_(chip, faults, log), log_(log), descriptors_(dfuDescriptors(chip)) {}

// ---- requests

const DfuDevice::Request *DfuDevice::requestOf(const UsbSetup &setup) const {
    const bool known = (setup.type == toInterface || setup.type == fromInterface) && setup.request < requests().size();
    const Request *request = known ? &requests()[setup.request] : nullptr;
    const bool wellFormed = request != nullptr && standard_.configured() && setup.type == request->type &&
                            setup.index == 0 && (request->hasValue || setup.value == 0) &&
                            setup.length >= request->shortest && setup.length <= request->longest;
    return wellFormed ? request : nullptr;
}

UsbAnswer DfuDevice::control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    advance(now);
    if (awayAt_ && (said_ || now >= *awayAt_))
        return UsbAnswer::silent();
    if (commands_.bootloader().silent())
        return UsbAnswer::silent();
    if (setup.standard())
        return standard_.answer(setup, now);
    const Request *request = requestOf(setup);
    if (request == nullptr || (!setup.towardsHost() && out.size() != setup.length))
        return misfit("a request of a wrong form", now);
    for (const Transition &row : transitions()) {
        if (row.state == state_ && row.request == request->number) {
            const UsbAnswer answer = (this->*row.act)(setup, out, now);
            return commands_.bootloader().silent() ? UsbAnswer::silent() : answer;
        }
    }
    return misfit(request->name, now);
}

UsbAnswer DfuDevice::misfit(const std::string &what, Nanoseconds now) {
    log_.refused(what + ": does not fit " + nameOf(state_));
    pending_.reset();
    status_ = DfuStatus::errStalledPkt;
    state_ = State::error;
    return UsbAnswer::stall(now);
}

UsbAnswer DfuDevice::follow(State next, Nanoseconds now) {
    state_ = next;
    return UsbAnswer::done(now);
}

UsbAnswer DfuDevice::download(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    if (setup.length == 0)
        return follow(State::manifestSync, now);
    if (setup.value == wire::dfuReplyBlock)
        return misfit("DNLOAD of block 1", now);
    pending_ = Block{setup.value, out};
    return follow(State::downloadSync, now);
}

UsbAnswer DfuDevice::upload(const UsbSetup &setup, const Bytes &, Nanoseconds now) {
    if (setup.value == wire::dfuCommandBlock)
        return handOver(setup, commands_.list(), now);
    if (setup.value != wire::dfuReplyBlock)
        return uploadMemory(setup, now);
    const std::optional<Bytes> reply = state_ == State::idle ? commands_.takeReply() : std::nullopt;
    return reply ? handOver(setup, *reply, now) : misfit("UPLOAD of block 1, without a reply,", now);
}

UsbAnswer DfuDevice::uploadMemory(const UsbSetup &setup, Nanoseconds now) {
    Bytes data;
    const DfuCommands::Result result = commands_.upload(setup.value, setup.length, now, data);
    if (result.status == DfuStatus::ok)
        return handOver(setup, data, now);
    status_ = result.status;
    state_ = State::error;
    return UsbAnswer::stall(now);
}

// A block that is shorter than what was asked for is the last one.
UsbAnswer DfuDevice::handOver(const UsbSetup &setup, const Bytes &data, Nanoseconds now) {
    const std::size_t length = std::min<std::size_t>(data.size(), setup.length);
    state_ = length < setup.length ? State::idle : State::uploadIdle;
    return UsbAnswer::done(now, Bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length)));
}

UsbAnswer DfuDevice::statusAnswer(Nanoseconds now) const {
    const auto poll = static_cast<std::uint32_t>(state_ == State::downloadBusy ? pollTime(busyUntil_ - now) : 0);
    return UsbAnswer::done(now, {static_cast<std::uint8_t>(status_), static_cast<std::uint8_t>(poll),
                                 static_cast<std::uint8_t>(poll >> 8), static_cast<std::uint8_t>(poll >> 16),
                                 static_cast<std::uint8_t>(state_), 0});
}

UsbAnswer DfuDevice::getStatus(const UsbSetup &, const Bytes &, Nanoseconds now) {
    return statusAnswer(now);
}

UsbAnswer DfuDevice::getState(const UsbSetup &, const Bytes &, Nanoseconds now) {
    return UsbAnswer::done(now, {static_cast<std::uint8_t>(state_)});
}

UsbAnswer DfuDevice::toIdle(const UsbSetup &, const Bytes &, Nanoseconds now) {
    status_ = DfuStatus::ok;
    return follow(State::idle, now);
}

UsbAnswer DfuDevice::carryOut(const UsbSetup &, const Bytes &, Nanoseconds now) {
    if (!pending_)
        return workDone(now);
    const Block block = *std::exchange(pending_, std::nullopt);
    const DfuCommands::Result result = commands_.download(block.number, block.data, now);
    status_ = result.status;
    busyUntil_ = result.at;
    ended_ = result.ended;
    state_ = State::downloadBusy;
    if (ended_ == Next::powerLost) {
        goAway(busyUntil_, busyUntil_ + Bootloader::startTime);
        if (busyUntil_ <= now)
            return UsbAnswer::silent();
    } else if (ended_ == Next::reset) {
        const Nanoseconds at = now + pollTime(busyUntil_ - now) * millisecond + withoutAnswer;
        goAway(at, at + Bootloader::startTime);
    }
    // Whether it went well is told when it is done.
    UsbAnswer answer = statusAnswer(now);
    answer.data[0] = static_cast<std::uint8_t>(DfuStatus::ok);
    return answer;
}

UsbAnswer DfuDevice::workDone(Nanoseconds now) {
    state_ = status_ == DfuStatus::ok ? State::downloadIdle : State::error;
    if (ended_ == Next::reset)
        goAwayBehindAnswer(now);
    return statusAnswer(now);
}

UsbAnswer DfuDevice::stillBusy(const UsbSetup &, const Bytes &, Nanoseconds now) {
    log_.refused("GETSTATUS: " + std::to_string(pollTime(busyUntil_ - now)) + " ms of the poll time are left");
    UsbAnswer answer = statusAnswer(now);
    answer.data[0] = static_cast<std::uint8_t>(DfuStatus::ok);
    return answer;
}

UsbAnswer DfuDevice::leave(const UsbSetup &, const Bytes &, Nanoseconds now) {
    const DfuCommands::Result result = commands_.leave(now);
    status_ = result.status;
    ended_ = result.ended;
    state_ = status_ == DfuStatus::ok ? State::manifest : State::error;
    if (status_ == DfuStatus::ok)
        goAwayBehindAnswer(now);
    return statusAnswer(now);
}

// ---- coming and going

void DfuDevice::beFresh() {
    standard_.reset();
    commands_.forget();
    state_ = State::idle;
    status_ = DfuStatus::ok;
    pending_.reset();
    ended_ = Next::end;
    said_ = false;
}

void DfuDevice::advance(Nanoseconds now) {
    if (backAt_ && now >= *backAt_) {
        awayAt_.reset();
        backAt_.reset();
        ++attachments_;
        beFresh();
    }
    if (state_ == State::downloadBusy && now >= busyUntil_)
        state_ = State::downloadSync;
}

void DfuDevice::goAway(Nanoseconds at, std::optional<Nanoseconds> back) {
    awayAt_ = awayAt_ ? std::min(*awayAt_, at) : at;
    backAt_ = back;
}

void DfuDevice::goAwayBehindAnswer(Nanoseconds at) {
    said_ = true;
    awayAt_ = at + behindAnswer;
    backAt_ = ended_ == Next::leave ? std::nullopt : std::optional(*awayAt_ + Bootloader::startTime);
}

void DfuDevice::delivered(Nanoseconds at) {
    if (said_)
        goAwayBehindAnswer(at);
}

void DfuDevice::busReset(Nanoseconds now) {
    advance(now);
    if (!awayAt_)
        beFresh();
}

UsbPresence DfuDevice::presence(Nanoseconds now) {
    advance(now);
    return {!awayAt_ || now < *awayAt_, attachments_, false};
}

std::optional<Nanoseconds> DfuDevice::nextEvent(Nanoseconds now) {
    advance(now);
    return awayAt_ && now < *awayAt_ ? awayAt_ : backAt_;
}

void DfuDevice::pressReset(Nanoseconds now) {
    advance(now);
    commands_.bootloader().reset(now);
    goAway(now, now + Bootloader::startTime);
}

void DfuDevice::losePower(Nanoseconds now) {
    advance(now);
    commands_.bootloader().losePower(now);
    goAway(now, now + Bootloader::startTime);
}

} // namespace sim
