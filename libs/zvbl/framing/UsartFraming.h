#pragma once

#include <functional>

#include "libs/zvbl/framing/Framing.h"
#include "libs/zvbl/transport/SerialPort.h"

namespace zvbl {

// Commands on a serial line. docs/wire-protocol.md, "USART", is what it speaks; "What the library does
// with it" tells how it gets back in step.
class UsartFraming : public Framing {
public:
    UsartFraming(SerialPort &port, const Timing &timing, Trace &trace);

    Status start(const StartSettings &settings, Duration timeout) override;
    Status setSpeed(unsigned long speed, Duration timeout) override;
    bool readsInRuns() const override { return true; }
    Status transfer(const Command &command, Bytes &reply, Duration timeout) override;

private:
    // kept: the chip waits for an opcode. doubtful: it said NACK, and may hold the rest of a damaged
    // group. lost: nobody knows.
    enum class Step { kept, doubtful, lost };

    Status carry(const Command &command, Bytes &reply);
    Status ask(const Bytes &bytes, Status ifRefused, const std::function<void()> &meanwhile);
    Status takeAnswer(Status ifRefused);
    Status takeReply(const Reply &expected, Bytes &reply);
    Status expectSilence(double characters);
    bool isHeldUp();

    Status getInStep();
    Status probe(Duration wait, Duration quietIfPrompt, Bytes &heard);
    bool isPrompt() const;
    Status awaitFrameLimit(TimePoint bound);
    Status listenUntilQuiet(Duration quiet);

    Status send(const Bytes &bytes);
    Status take(std::size_t count, Bytes &bytes);
    Status hear(TimePoint deadline);
    Status discardReceived();
    Status neverSilent();
    void discard();
    void discardAllBut(std::size_t last);
    void learnPace(std::size_t count, Duration took);
    bool isTooEarly(std::size_t sent, TimePoint from) const;

    SerialPort &m_port;
    const Timing m_timing;
    Trace &m_trace;

    Duration m_timeout{};
    Step m_step = Step::kept;
    bool m_inRun = false;   // the command before was a READ, and went well, and the next packet belongs to it
    Bytes m_heard;          // received, and not taken yet
    TimePoint m_lastSent{}; // when the last byte sent has left the line, by its rate
    TimePoint m_lastHeard{};

    // Whether bytes come at the line's rate, and not at once as through a pseudo terminal: then an
    // answer that is there before its question has gone out is an old one.
    bool m_paced = false;
    bool m_trustPace = true;
    bool m_suspicion = false; // such an answer came
};

} // namespace zvbl
