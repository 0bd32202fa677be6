#include "sim/links/I2cProtocol.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

namespace {
constexpr std::uint8_t released = 0xFF; // what is read when the chip drives nothing
}

bool I2cProtocol::acknowledges(bool read, Nanoseconds now) const {
    return mailbox_.there(now) && (read || !mailbox_.working(now));
}

bool I2cProtocol::write(const Bytes &bytes, Nanoseconds now) {
    if (!acknowledges(false, now))
        return false;
    if (bytes.empty())
        return true;
    mailbox_.throwAway(now);
    if (!mailbox_.there(now))
        return false; // it waited with its reset for somebody to read the answer
    const Passage passage = pass(bytes, Direction::rx, faults_);
    if (passage.hangup)
        hangup_ = passage.hangup;
    else if (!passage.bytes.empty())
        mailbox_.group(passage.bytes, now + passage.late);
    return true;
}

// Whether an ACK or a NACK is still to come. A late reply holds the clock instead: it is never busy.
bool I2cProtocol::busy(Nanoseconds now) {
    const Output *next = mailbox_.next();
    return next == nullptr ? mailbox_.working(now) : !next->reply && next->at > now;
}

I2cProtocol::Read I2cProtocol::read(std::size_t length, Nanoseconds now) {
    Read read{acknowledges(true, now), Bytes(length, released), now};
    if (!read.acknowledged || length == 0)
        return read;
    Output *next = mailbox_.next();
    if (next != nullptr && !mailbox_.leaving && !busy(now)) {
        const auto end = next->bytes.begin() + static_cast<std::ptrdiff_t>(std::min(length, next->bytes.size()));
        mailbox_.leaving = pass(Bytes(next->bytes.begin(), end), Direction::tx, faults_);
        next->at = std::max(next->at, now) + mailbox_.leaving->late;
    }
    if (busy(now)) {
        read.bytes[0] = wire::busy;
    } else if (next != nullptr) {
        const Passage passage = *mailbox_.leaving;
        std::copy_n(passage.bytes.begin(), std::min(length, passage.bytes.size()), read.bytes.begin());
        read.at = std::max(next->at, now);
        mailbox_.fetched(read.at);
        if (passage.hangup)
            hangup_ = passage.hangup;
    }
    return read;
}

void I2cProtocol::losePower(Nanoseconds now) {
    mailbox_.losePower(now);
    hangup_.reset();
}

} // namespace sim
