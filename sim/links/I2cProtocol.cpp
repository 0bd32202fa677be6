#include "sim/links/I2cProtocol.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

namespace {
constexpr std::uint8_t released = 0xFF; // what is read when the chip drives nothing
}

bool I2cProtocol::acknowledges(bool read, Nanoseconds now) const {
    return m_mailbox.there(now) && (read || !m_mailbox.working(now));
}

bool I2cProtocol::write(const Bytes &bytes, Nanoseconds now) {
    if (!acknowledges(false, now))
        return false;
    if (bytes.empty())
        return true;
    m_mailbox.throwAway(now);
    if (!m_mailbox.there(now))
        return false; // it waited with its reset for somebody to read the answer
    const Passage passage = pass(bytes, Direction::rx, m_faults);
    if (passage.hangup)
        m_hangup = passage.hangup;
    else if (!passage.bytes.empty())
        m_mailbox.group(passage.bytes, now + passage.late);
    return true;
}

// Whether an ACK or a NACK is still to come. A late reply holds the clock instead: it is never busy.
bool I2cProtocol::busy(Nanoseconds now) {
    const Output *next = m_mailbox.next();
    return next == nullptr ? m_mailbox.working(now) : !next->reply && next->at > now;
}

I2cProtocol::Read I2cProtocol::read(std::size_t length, Nanoseconds now) {
    Read read{acknowledges(true, now), Bytes(length, released), now};
    if (!read.acknowledged || length == 0)
        return read;
    Output *next = m_mailbox.next();
    if (next != nullptr && !m_mailbox.leaving && !busy(now)) {
        const auto end = next->bytes.begin() + static_cast<std::ptrdiff_t>(std::min(length, next->bytes.size()));
        m_mailbox.leaving = pass(Bytes(next->bytes.begin(), end), Direction::tx, m_faults);
        next->at = std::max(next->at, now) + m_mailbox.leaving->late;
    }
    if (busy(now)) {
        read.bytes[0] = wire::busy;
    } else if (next != nullptr) {
        const Passage passage = *m_mailbox.leaving;
        std::copy_n(passage.bytes.begin(), std::min(length, passage.bytes.size()), read.bytes.begin());
        read.at = std::max(next->at, now);
        m_mailbox.fetched(read.at);
        if (passage.hangup)
            m_hangup = passage.hangup;
    }
    return read;
}

void I2cProtocol::losePower(Nanoseconds now) {
    m_mailbox.losePower(now);
    m_hangup.reset();
}

} // namespace sim
