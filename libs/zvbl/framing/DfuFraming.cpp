#include "libs/zvbl/framing/DfuFraming.h"

#include <algorithm>

#include "libs/zvbl/framing/DfuNames.h"
#include "libs/zvbl/framing/Groups.h"

namespace zvbl {
namespace {

constexpr std::size_t longestTransfer = 4096; // of one control transfer, whatever wTransferSize says

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
    const bool resets = endsBootloader(command.opcode);
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
    case wire::opRead: return read(command, reply);
    case wire::opWrite: return write(command);
    case wire::opGo: return go(command);
    default: return further(command, reply);
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
    m_pointer.reset(); // it runs at the pointer itself, not after it
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
    const bool resets = endsBootloader(command.opcode);
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

} // namespace zvbl
