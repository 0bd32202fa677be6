#pragma once

#include <deque>
#include <string>

#include "libs/zvbl/Trace.h"
#include "libs/zvbl/transport/CanBus.h"
#include "libs/zvbl/transport/SerialPort.h"

namespace zvbl {

// A CAN adapter on a serial line, in the ASCII protocol that most of them have in common: S rate, O open,
// C close, t frame, V version, F state; a carriage return ends a line and says yes, BEL says no. The tty is
// at 8N1 and the baud rate of the settings; the channel is opened at a chip's start speed.
class CanAdapter : public CanBus {
public:
    explicit CanAdapter(Trace &trace) : m_trace(trace), m_port(trace) {}
    ~CanAdapter() override;
    CanAdapter(const CanAdapter &) = delete;
    CanAdapter &operator=(const CanAdapter &) = delete;

    Status open(const LinkSettings &settings) override;
    Status reconfigure(const LinkSettings &settings) override;
    Status setLine(ControlLine line, bool high) override;

    Status send(const CanFrame &frame, TimePoint deadline) override;
    Status receive(CanFrame &frame, TimePoint deadline) override;
    unsigned bitRate() const override { return m_bitRate; }
    Status mayChangeBitRate() override { return Status::ok; }
    Status setBitRate(unsigned bitsPerSecond) override;
    Duration frameTime(std::size_t dataBytes) const override;
    void explain() override;

private:
    // What an adapter says to a command that is no frame.
    enum class Answer { none, yes, no };

    Status bringUp(TimePoint deadline);
    Status silence(TimePoint deadline);
    Status tell(const std::string &command, Answer &answer, TimePoint deadline);
    Status insist(const std::string &command, TimePoint deadline);
    Status write(const std::string &line, TimePoint deadline);
    Status awaitRoom(TimePoint deadline);
    Status awaitBus(TimePoint deadline);
    Status hear(TimePoint deadline);
    void takeLine(const std::string &line);
    void takeRefusal();
    Status loseCount(const std::string &why);
    Status breakOrder();

    Trace &m_trace;
    SerialPort m_port;
    bool m_opened = false;
    unsigned m_bitRate = 0;
    std::string m_heard; // no whole line yet
    std::deque<CanFrame> m_frames;

    bool m_asking = false; // a command is under way
    Answer m_answer = Answer::none;
    std::string m_text; // of the answer

    // Frames that the adapter has not acknowledged yet. It says yes or no to each, in their order. Three fit
    // into the line buffer of the smallest ones.
    std::size_t m_unanswered = 0;
    std::size_t m_window = 3; // how many of them may be
    std::string m_lastLine;
    TimePoint m_lastSent{};
    bool m_sendAgain = false;   // the last one was refused
    bool m_orderBroken = false; // one was refused that others had followed
    bool m_countLost = false;   // an acknowledge was lost
    TimePoint m_busFree{};      // by then the bus has carried all that the adapter was given
};

} // namespace zvbl
