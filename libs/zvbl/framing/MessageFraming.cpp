#include "libs/zvbl/framing/MessageFraming.h"

#include "libs/zvbl/framing/Groups.h"

namespace zvbl {

Status MessageFraming::transfer(const Command &command, Bytes &reply, Duration timeout) {
    m_timeout = timeout;
    reply.clear();
    if (!m_inStep) {
        m_trace.remark("getting in step");
        if (const Status status = getInStep(); status != Status::ok)
            return status;
    }
    m_inStep = false;
    const Status status = carry(command, reply);
    m_inStep = status == Status::ok || status == Status::refused || status == Status::refusedCommand;
    return status;
}

Status MessageFraming::carry(const Command &command, Bytes &reply) {
    Status status = sendOpcode(command.opcode);
    if (status == Status::ok)
        status = expectAck(command.opcode, Status::refusedCommand);
    for (const Group &group : command.groups) {
        if (status == Status::ok)
            status = sendGroup(command.opcode, encodeGroup(group, command.reply));
        if (status == Status::ok)
            status = expectAck(command.opcode, Status::refused);
    }
    if (status == Status::ok && (command.reply.counted || command.reply.size > 0))
        status = takeReply(command, reply);
    if (status == Status::ok && command.reply.end == Reply::End::ack)
        status = expectAck(command.opcode, Status::refused);
    return status;
}

Status MessageFraming::unwrap(const Command &command, Bytes &reply) {
    if (sumOf(reply) != 0) {
        m_trace.remark("wrong checksum");
        return Status::noAnswer;
    }
    reply.pop_back();
    if (command.reply.counted)
        reply.erase(reply.begin());
    return Status::ok;
}

Status MessageFraming::expectAck(std::uint8_t opcode, Status ifRefused) {
    std::uint8_t answer = 0;
    if (const Status status = takeAnswer(opcode, answer); status != Status::ok)
        return status;
    if (answer == wire::ack)
        return Status::ok;
    if (answer == wire::nack)
        return ifRefused;
    m_trace.remark("not an answer");
    return Status::noAnswer;
}

} // namespace zvbl
