#pragma once

#include <optional>

#include "sim/bootloader/Bootloader.h"

namespace sim {

// How commands travel over USART: one byte to synchronise, opcode and complement, and a limit to the
// time between the bytes of a command. Fed one byte at a time, each with the time of its arrival.
class UsartProtocol {
public:
    explicit UsartProtocol(Bootloader &bootloader);

    void receive(std::uint8_t byte, Nanoseconds now);

    // What the chip wants to send by now.
    std::vector<TimedByte> takeOutput();

    // The line tells when an answer has left: the time for the host's next byte runs from then.
    void sent(Nanoseconds at);

private:
    void followReset();
    bool inCommand() const { return m_opcode.has_value() || !m_bootloader.idle(); }
    void dropIfLate(Nanoseconds now);
    void opening(std::uint8_t byte, Nanoseconds now);

    Bootloader &m_bootloader;
    unsigned m_resets;
    bool m_synchronised = false;
    std::optional<std::uint8_t> m_opcode; // its complement is still to come
    Nanoseconds m_last = 0;
};

} // namespace sim
