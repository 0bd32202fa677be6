#pragma once

#include "libs/zvbl/framing/MessageFraming.h"
#include "libs/zvbl/transport/SpiPort.h"

namespace zvbl {

// Commands on an SPI bus, where the host clocks both ways: it sends a message, and fetches until the
// answer comes. docs/wire-protocol.md, "SPI".
class SpiFraming : public MessageFraming {
public:
    SpiFraming(SpiPort &port, const Timing &timing, Trace &trace) : MessageFraming(timing, trace), m_port(port) {}

    // Takes the rate in bits per second, 0 for 150000.
    Status start(const StartSettings &settings, Duration timeout) override;
    Status setSpeed(unsigned long, Duration) override { return Status::refusedCommand; } // it is told at the start
    Status transfer(const Command &command, Bytes &reply, Duration timeout) override;

private:
    Status sendOpcode(std::uint8_t opcode) override;
    Status sendGroup(std::uint8_t opcode, const Bytes &bytes) override;
    Status takeAnswer(std::uint8_t opcode, std::uint8_t &answer) override;
    Status takeReply(const Command &command, Bytes &reply) override;
    Status getInStep() override;

    Status open();
    Status openOnce(TimePoint deadline, std::uint8_t &answer);
    Status send(const Bytes &bytes, std::size_t fetch);
    Status hear(std::size_t count, TimePoint deadline);
    void take(std::size_t count, Bytes &bytes);

    SpiPort &m_port;
    Bytes m_heard;             // fetched and not taken yet
    std::size_t m_toSend = 0;  // groups of the command that are still to be sent
    std::size_t m_toFetch = 0; // bytes that follow its last ACK at once, as far as that is known
};

} // namespace zvbl
