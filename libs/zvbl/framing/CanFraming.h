#pragma once

#include "libs/zvbl/framing/CanSpeeds.h"
#include "libs/zvbl/framing/MessageFraming.h"
#include "libs/zvbl/transport/CanBus.h"

namespace zvbl {

// Commands on a CAN bus. docs/wire-protocol.md, "CAN", is what it speaks.
class CanFraming : public MessageFraming {
public:
    CanFraming(CanBus &bus, const Timing &timing, Trace &trace);
    ~CanFraming() override; // brings the chip back to its start speed, where the next link looks for it

    Status start(const StartSettings &settings, Duration timeout) override;
    Status setSpeed(unsigned long speed, Duration timeout) override;
    Status transfer(const Command &command, Bytes &reply, Duration timeout) override;

protected:
    Status sendOpcode(std::uint8_t opcode) override;
    Status sendGroup(std::uint8_t opcode, const Bytes &bytes) override;
    Status takeAnswer(std::uint8_t opcode, std::uint8_t &answer) override;
    Status takeReply(const Command &command, Bytes &reply) override;
    Status getInStep() override;

private:
    // Where an answer that came twice shows by itself.
    enum class Doubles { nowhere, inReply, inLastGroup };
    static Doubles whereDoublesShow(const Command &command);

    Status open(Duration timeout);
    Status hearOpened(TimePoint until, std::uint8_t &answer);
    Status startAtTwoSpeeds(unsigned bitsPerSecond, Duration timeout);
    Status changeBus(unsigned bitsPerSecond);
    Status tellSpeed(const CanSpeed &speed, Duration timeout);
    Status follow(unsigned bitsPerSecond, Status told);

    Status send(const CanFrame &frame, TimePoint deadline);
    Status hear(CanFrame &frame, TimePoint deadline);
    static bool isAnswerTo(std::uint8_t opcode, const CanFrame &frame);
    void note(const CanFrame &frame, bool used);
    Status hearAnswer(std::uint8_t opcode, CanFrame &frame);
    Status takePart(const Command &command, Bytes &reply, std::size_t &size);
    Status discardUntil(TimePoint deadline);
    Status discardUntilQuiet(TimePoint bound);
    Status expectSilence(std::uint8_t opcode, Duration howLong);
    Duration doubleTime() const;

    CanBus &m_bus;
    TimePoint m_lastSent{}; // when the last frame has left, by the bit rate
    TimePoint m_lastHeard{};
    bool m_chipChanged = false; // its speed, by us, and it was not reset since

    // Of the command under way.
    std::size_t m_groupsLeft = 0;
    Doubles m_doubles = Doubles::nowhere;
    bool m_wentWell = false; // the one before
    bool m_hurried = false;  // a packet after a command that went well
};

} // namespace zvbl
