#pragma once

#include "libs/zvbl/Trace.h"
#include "libs/zvbl/framing/Framing.h"

namespace zvbl {

// What the links have in common on which bytes travel in whole messages: a message is complete or lost,
// and a new command throws away what is left of an old one. So a NACK leaves the link in step.
class MessageFraming : public Framing {
public:
    Status transfer(const Command &command, Bytes &reply, Duration timeout) override;

protected:
    MessageFraming(const Timing &timing, Trace &trace) : m_timing(timing), m_trace(trace) {}

    // Sends an opcode, a group with its check byte.
    virtual Status sendOpcode(std::uint8_t opcode) = 0;
    virtual Status sendGroup(std::uint8_t opcode, const Bytes &bytes) = 0;

    // Takes the byte that answers what was sent last; noAnswer when none comes within the timeout.
    virtual Status takeAnswer(std::uint8_t opcode, std::uint8_t &answer) = 0;

    // Takes the reply without its count, its checksum and the ACK after it.
    virtual Status takeReply(const Command &command, Bytes &reply) = 0;

    // Makes sure that the chip waits for an opcode and nothing old is under way. outOfStep: it does not.
    virtual Status getInStep() = 0;

    // Takes the count, if there is one, and the checksum off a whole reply. noAnswer: the checksum is wrong.
    Status unwrap(const Command &command, Bytes &reply);

    // Carries out one command on a link that is in step.
    Status carry(const Command &command, Bytes &reply);

    // Takes an answer that has to be ACK. A NACK becomes the status that is named.
    Status expectAck(std::uint8_t opcode, Status ifRefused);

    const Timing m_timing;
    Trace &m_trace;
    Duration m_timeout{};
    bool m_inStep = true;
};

} // namespace zvbl
