#include "libs/zvbl/framing/DfuFraming.h"

#include <algorithm>

#include "libs/zvbl/framing/DfuNames.h"
#include "libs/zvbl/framing/Groups.h"

namespace zvbl {
namespace {

constexpr std::size_t longestTransfer = 4096; // of one control transfer, whatever wTransferSize says
constexpr std::size_t statusSize = 6;
constexpr int recoveryRounds = 5;
constexpr auto shortestPoll = std::chrono::milliseconds(1);

// Behind these the chip resets, or leaves the bootloader.
constexpr std::uint8_t resetting[] = {
    wire::opGo,         wire::opEppProtect,   wire::opEppUnprotect, wire::opAccessProtect, wire::opAccessProtectLevel,
    wire::opEnableSlib, wire::opAccessUnprotect, wire::opDisableSlib, wire::opReset, wire::opUserDataWrite};

bool isResetting(std::uint8_t opcode) {
    return std::find(std::begin(resetting), std::end(resetting), opcode) != std::end(resetting);
}

bool isRefusal(Status status) {
    return status == Status::refused || status == Status::refusedCommand;
}

std::uint32_t addressOf(const Command &command) {
    std::uint32_t address = 0;
    for (const std::uint8_t byte : command.groups.front().bytes)
        address = address << 8 | byte;
    return address;
}

} // namespace

Status DfuFraming::start(const StartSettings &, Duration timeout) {
    m_timeout = timeout;
    const Status status = m_state == State::lost ? recover() : Status::ok;
    return status == Status::noAnswer || status == Status::refused ? Status::noStart : status;
}

Status DfuFraming::setSpeed(unsigned long, Duration) {
    return Status::refusedCommand; // USB has its own
}

std::size_t DfuFraming::packetSize(std::size_t) const {
    return std::min(m_port.transferSize(), longestTransfer);
}

Status DfuFraming::transfer(const Command &command, Bytes &reply, Duration timeout) {
    m_timeout = timeout;
    reply.clear();
    if (m_state == State::lost) {
        m_trace.remark("getting in step");
        if (const Status status = recover(); status != Status::ok)
            return status == Status::gone ? status : Status::outOfStep;
    }
    const bool resets = isResetting(command.opcode);
    if (resets)
        m_port.expectRestart();
    const Status status = carry(command, reply);
    if (resets && (isRefusal(status) || status == Status::badArgument))
        m_port.endRestart();
    if (status != Status::ok)
        m_pointer.reset();
    return status;
}

Status DfuFraming::carry(const Command &command, Bytes &reply) {
    switch (command.opcode) {
    case wire::opRead:  return read(command, reply);
    case wire::opWrite: return write(command);
    case wire::opGo:    return go(command);
    default:            return further(command, reply);
    }
}

Status DfuFraming::read(const Command &command, Bytes &reply) {
    std::uint16_t block = 0;
    if (const Status status = pointTo(addressOf(command), block); status != Status::ok)
        return status;
    if (const Status status = upload(block, command.reply.size, reply); status != Status::ok)
        return status;
    return reply.size() == command.reply.size ? Status::ok : damaged("a short answer");
}

Status DfuFraming::write(const Command &command) {
    std::uint16_t block = 0;
    const Status status = pointTo(addressOf(command), block);
    return status == Status::ok ? download(block, command.groups.back().bytes) : status;
}

Status DfuFraming::go(const Command &command) {
    m_pointer.reset(); // it runs at the pointer itself, not behind it
    std::uint16_t block = 0;
    Status status = pointTo(addressOf(command), block);
    if (status == Status::ok)
        status = give(block, {});
    DfuStatus answer;
    if (status == Status::ok)
        status = getStatus(answer);
    if (status != Status::ok)
        return status;
    m_pointer.reset();
    if (answer.state == dfuManifest || answer.state == dfuManifestWaitReset)
        return Status::ok;
    return answer.state == dfuError ? refusalOf(answer) : damaged("not a state that belongs here");
}

Status DfuFraming::further(const Command &command, Bytes &reply) {
    Bytes bytes{command.opcode};
    for (const Group &group : command.groups) {
        const Bytes encoded = encodeGroup(group, command.reply);
        bytes.insert(bytes.end(), encoded.begin(), encoded.end());
    }
    if (bytes.size() > packetSize(0)) {
        m_trace.remark("a command longer than wTransferSize");
        return Status::badArgument;
    }
    const bool resets = isResetting(command.opcode);
    Status status = give(wire::dfuCommandBlock, bytes);
    if (status == Status::ok)
        status = awaitDone(resets);
    if (status == Status::ok && resets) {
        m_state = State::lost;
        m_pointer.reset();
    }
    if (status == Status::ok && (command.reply.counted || command.reply.size > 0))
        status = takeReply(command.reply, reply);
    return status;
}

// The reply comes whole, so its length tells whether it is one.
Status DfuFraming::takeReply(const Reply &expected, Bytes &reply) {
    if (const Status status = upload(wire::dfuReplyBlock, packetSize(0), reply); status != Status::ok)
        return status;
    const bool checked = expected.end == Reply::End::sum;
    const std::size_t size = expected.size + (checked ? 1 : 0);
    if (expected.counted ? reply.empty() || reply.size() != reply.front() + 2U : reply.size() != size)
        return damaged("a reply of the wrong length");
    if (checked && sumOf(reply) != 0)
        return damaged("wrong checksum");
    if (expected.counted)
        reply.erase(reply.begin());
    if (checked)
        reply.pop_back();
    return Status::ok;
}

// Gives the number of the block that starts at the address. The pointer is set anew only where no block does:
// packets in a row cost one DNLOAD each.
Status DfuFraming::pointTo(std::uint32_t address, std::uint16_t &block) {
    const std::size_t size = m_port.transferSize();
    if (m_pointer && address >= *m_pointer && (address - *m_pointer) % size == 0) {
        const std::size_t number = (address - *m_pointer) / size + wire::dfuFirstDataBlock;
        block = static_cast<std::uint16_t>(number);
        if (number <= 0xFFFF)
            return Status::ok;
    }
    Bytes command{wire::dfuSetPointer};
    for (unsigned shift = 0; shift < 32; shift += 8)
        command.push_back(static_cast<std::uint8_t>(address >> shift));
    m_pointer.reset();
    if (const Status status = download(wire::dfuCommandBlock, command); status != Status::ok)
        return status;
    m_pointer = address;
    block = wire::dfuFirstDataBlock;
    return Status::ok;
}

Status DfuFraming::download(std::uint16_t block, const Bytes &data) {
    const Status status = give(block, data);
    return status == Status::ok ? awaitDone(false) : status;
}

// One DNLOAD; it is carried out at the GETSTATUS that has to follow.
Status DfuFraming::give(std::uint16_t block, const Bytes &data) {
    if (const Status status = toIdle(State::downloadIdle); status != Status::ok)
        return status;
    m_state = State::lost;
    const Status status = m_port.send(DfuRequest::download, block, data, m_timeout);
    return status == Status::refused ? refusal() : status;
}

Status DfuFraming::upload(std::uint16_t block, std::size_t size, Bytes &data) {
    if (const Status status = toIdle(State::uploadIdle); status != Status::ok)
        return status;
    m_state = State::lost;
    const Status status = m_port.fetch(DfuRequest::upload, block, size, data, m_timeout);
    if (status == Status::ok)
        m_state = data.size() == size ? State::uploadIdle : State::idle; // a short block is the last one
    return status == Status::refused ? refusal() : status;
}

// The device tells how long it will be busy: that is waited for, and the timeout on top of the longest time
// that it told, counted from its first answer.
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
        const Duration poll = first ? std::max(answer.pollTime, shortestPoll) : answer.pollTime;
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
        if (status != Status::ok && !isRefusal(status))
            return status;
    }
    return damaged("it does not become idle");
}

Status DfuFraming::recoverFrom(std::uint8_t state) {
    switch (state) {
    case dfuDownloadSync:
    case dfuDownloadIdle:
    case dfuManifestSync:
    case dfuUploadIdle:
        return m_port.send(DfuRequest::abort, 0, {}, m_timeout);
    case dfuDownloadBusy:
        return awaitDone(false);
    case dfuError:
        return m_port.send(DfuRequest::clearStatus, 0, {}, m_timeout);
    default:
        return damaged("it has left its bootloader");
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
