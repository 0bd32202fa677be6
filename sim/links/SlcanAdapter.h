#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "sim/links/CanLine.h"

namespace sim {

// A CAN adapter at a serial line, which shares its bus with one chip. Its commands are lines of ASCII
// characters that end in a carriage return; it answers a carriage return for done and a bell for refused.
// Frames from the bus are lines of their own.
class SlcanAdapter {
public:
    SlcanAdapter(CanLine &bus, Log &log) : m_bus(bus), m_log(log) {}

    // Characters from the host; what the adapter answers.
    std::string receive(std::string_view characters, Nanoseconds now);

    // A frame that has arrived from the bus, as a line for the host; empty when it does not get there.
    std::string hear(const TimedFrame &timed);

    // Power on: closed, without a bit rate.
    void powerOn() { m_state = State{}; }

private:
    enum Channel : unsigned { closed = 1, open = 2, listening = 4 };

    struct State {
        std::string line; // of the host, as far as it has come
        Channel channel = closed;
        unsigned speed = 0; // bits per second, 0 until it is set
        bool timestamps = false;
        std::uint32_t code = 0; // which frames pass
        std::uint32_t mask = 0xFFFFFFFF;
        std::uint8_t flags = 0;
        std::deque<Nanoseconds> unsent; // when the frames that wait for the bus are through
    };

    struct Reply {
        bool done;
        std::string text; // before the carriage return, or why not
    };

    struct Command {
        char letter;
        unsigned channels; // in which it is allowed
        Reply (SlcanAdapter::*carryOut)(const std::string &line, Nanoseconds now);
    };
    static const Command commands[];

    Reply obey(const std::string &line, Nanoseconds now);
    Reply setSpeed(const std::string &line, Nanoseconds now);
    Reply openChannel(const std::string &line, Nanoseconds now);
    Reply closeChannel(const std::string &line, Nanoseconds now);
    Reply transmit(const std::string &line, Nanoseconds now);
    Reply tellFlags(const std::string &line, Nanoseconds now);
    Reply tellVersion(const std::string &line, Nanoseconds now);
    Reply setTimestamps(const std::string &line, Nanoseconds now);
    Reply setFilter(const std::string &line, Nanoseconds now);
    bool passes(const CanFrame &frame) const;

    CanLine &m_bus;
    Log &m_log;
    State m_state;
};

} // namespace sim
