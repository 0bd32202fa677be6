#pragma once

#include "sim/links/Mailbox.h"

namespace sim {

// The chip as a target on an I2C bus: one write transfer is one whole group, one read transfer fetches one
// answer.
class I2cProtocol {
public:
    I2cProtocol(Bootloader &bootloader, Faults &faults) : m_mailbox(bootloader), m_faults(faults) {}

    // Whether the chip acknowledges its address now.
    bool acknowledges(bool read, Nanoseconds now) const;

    // A write transfer that ends now. False when the chip does not acknowledge.
    bool write(const Bytes &bytes, Nanoseconds now);

    // A read transfer that begins now.
    struct Read {
        bool acknowledged;
        Bytes bytes;    // as many as were asked for
        Nanoseconds at; // a late answer holds the clock until then
    };
    Read read(std::size_t length, Nanoseconds now);

    // Unplugged by a fault in the last transfer.
    const std::optional<Hangup> &hangup() const { return m_hangup; }

    void reset(Nanoseconds now) { m_mailbox.reset(now); }
    void losePower(Nanoseconds now);

private:
    bool busy(Nanoseconds now);

    Mailbox m_mailbox;
    Faults &m_faults;
    std::optional<Hangup> m_hangup;
};

} // namespace sim
