#pragma once

#include "libs/zvbl/framing/MessageFraming.h"
#include "libs/zvbl/transport/I2cPort.h"

namespace zvbl {

// Commands on an I2C bus, where the chip is a target: every group is one write, every answer and every
// reply one read. docs/wire-protocol.md, "I2C".
class I2cFraming : public MessageFraming {
public:
    I2cFraming(I2cPort &port, const Timing &timing, Trace &trace) : MessageFraming(timing, trace), m_port(port) {}

    // Takes the target's address, 0 for 0x3C; badArgument if no target can have it.
    Status start(const StartSettings &settings, Duration timeout) override;
    Status setSpeed(unsigned long, Duration) override { return Status::refusedCommand; } // the kernel's driver sets it
    Status transfer(const Command &command, Bytes &reply, Duration timeout) override;

private:
    Status sendOpcode(std::uint8_t opcode) override;
    Status sendGroup(std::uint8_t opcode, const Bytes &bytes) override;
    Status takeAnswer(std::uint8_t opcode, std::uint8_t &answer) override;
    Status takeReply(const Command &command, Bytes &reply) override;
    Status getInStep() override;

    Status probe();
    Status takeCount(std::uint8_t opcode, std::uint8_t &count);
    Status receive(Bytes &bytes);
    TimePoint waitEnd() const;

    I2cPort &m_port;
    std::uint8_t m_address = wire::i2cAddress;
    TimePoint m_probeEnd = TimePoint::max(); // while GET is sent to get in step
    bool m_acknowledged = false;             // an opcode was, since the probe began
};

} // namespace zvbl
