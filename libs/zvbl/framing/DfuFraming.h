#pragma once

#include <optional>

#include "libs/zvbl/framing/Framing.h"
#include "libs/zvbl/transport/UsbPort.h"

namespace zvbl {

// The answer to GETSTATUS (USB DFU 1.1, 6.1.2).
struct DfuStatus {
    std::uint8_t status = 0;
    std::uint8_t state = 0;
    std::chrono::milliseconds pollTime{};
};

// Commands on USB DFU 1.1 with its extension; docs/wire-protocol.md, "USB DFU". READ, WRITE and GO have a form
// of their own there, all others travel as opcode and groups in block 0.
class DfuFraming : public Framing {
public:
    DfuFraming(UsbPort &port, const Timing &timing, Trace &trace) : m_port(port), m_timing(timing), m_trace(trace) {}

    Status start(const StartSettings &settings, Duration timeout) override;
    Status setSpeed(unsigned long speed, Duration timeout) override;
    std::size_t packetSize(std::size_t wished) const override; // wTransferSize, whatever is wished
    bool guardsReplies() const override { return true; }       // USB checks and repeats every packet
    Status transfer(const Command &command, Bytes &reply, Duration timeout) override;

private:
    // What the host may do next: lost is the state when nobody knows.
    enum class State { lost, idle, downloadIdle, uploadIdle };

    Status carry(const Command &command, Bytes &reply);
    Status read(const Command &command, Bytes &reply);
    Status write(const Command &command);
    Status go(const Command &command);
    Status further(const Command &command, Bytes &reply);
    Status takeReply(const Reply &expected, Bytes &reply);

    Status pointTo(std::uint32_t address, std::uint16_t &block);
    Status download(std::uint16_t block, const Bytes &data);
    Status give(std::uint16_t block, const Bytes &data);
    Status upload(std::uint16_t block, std::size_t size, Bytes &data);
    Status awaitDone(bool resets);

    Status toIdle(State orElse);
    Status recover();
    Status recoverFrom(std::uint8_t state);
    Status getStatus(DfuStatus &status);
    Status refusal();
    Status refusalOf(const DfuStatus &status);
    Status damaged(const char *why);

    UsbPort &m_port;
    const Timing m_timing;
    Trace &m_trace;
    Duration m_timeout{};
    State m_state = State::lost;
    std::optional<std::uint32_t> m_pointer; // none: not known
};

} // namespace zvbl
