#pragma once

#include "sim/bootloader/Log.h"
#include "sim/links/Mailbox.h"

namespace sim {

// The chip as a target on an SPI bus: what is clocked in while it is selected is one message, a group or a
// fetch. Every byte is told with the time at which it is through.
class SpiProtocol {
public:
    SpiProtocol(Bootloader &bootloader, Faults &faults, Log &log);

    // Chip select; both ends are told.
    void select(Nanoseconds now);
    void deselect(Nanoseconds now);

    // A byte from the host; the one that the chip sends meanwhile.
    std::uint8_t shift(std::uint8_t byte, Nanoseconds now);

    // Unplugged by a fault.
    const std::optional<Hangup> &hangup() const { return m_hangup; }

    void reset(Nanoseconds now) { m_mailbox.reset(now); }
    void losePower(Nanoseconds now);

private:
    enum class Kind { none, fetch, message };

    std::uint8_t fetch(Nanoseconds now);
    void take(const Bytes &message, Nanoseconds now);
    void group(const Bytes &group, Nanoseconds now);

    Bootloader &m_bootloader;
    Mailbox m_mailbox;
    Faults &m_faults;
    Log &m_log;
    unsigned m_resets;
    bool m_synchronised = false;
    bool m_present = false; // what the chip was when it was selected
    bool m_working = false;
    Kind m_kind = Kind::none;
    Bytes m_message;
    std::size_t m_sent = 0; // bytes of the answer that is leaving
    std::optional<Hangup> m_hangup;
};

} // namespace sim
