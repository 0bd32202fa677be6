#include "sim/links/SpiProtocol.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Groups.h"
#include "sim/chip/Hex.h"

namespace sim {

namespace {

constexpr std::uint8_t released = 0xFF; // what is read when the chip drives nothing

// An answer as it travels.
Bytes framed(const Output &answer) {
    Bytes bytes = answer.bytes;
    if (answer.reply && !answer.checked)
        appendXor(bytes);
    bytes.insert(bytes.begin(), wire::spiStart);
    return bytes;
}

} // namespace

SpiProtocol::SpiProtocol(Bootloader &bootloader, Faults &faults, Log &log)
    : m_bootloader(bootloader), m_mailbox(bootloader), m_faults(faults), m_log(log), m_resets(bootloader.resets()) {}

void SpiProtocol::select(Nanoseconds now) {
    m_present = m_mailbox.there(now);
    m_working = m_mailbox.working(now);
    m_kind = Kind::none;
    m_message.clear();
}

std::uint8_t SpiProtocol::shift(std::uint8_t byte, Nanoseconds now) {
    if (m_kind == Kind::none)
        m_kind = byte == wire::spiIdle ? Kind::fetch : Kind::message;
    if (m_kind == Kind::message)
        m_message.push_back(byte);
    if (!m_present)
        return m_bootloader.silent() ? wire::spiIdle : released;
    return m_kind == Kind::fetch ? fetch(now) : wire::spiIdle;
}

std::uint8_t SpiProtocol::fetch(Nanoseconds now) {
    Output *next = m_mailbox.next();
    if (next == nullptr || next->at > now)
        return wire::spiIdle;
    if (!m_mailbox.leaving) {
        m_mailbox.leaving = pass(framed(*next), Direction::tx, m_faults);
        next->at = now + m_mailbox.leaving->late;
        m_sent = 0;
        if (next->at > now)
            return wire::spiIdle;
    }
    const Passage &passage = *m_mailbox.leaving;
    const std::uint8_t byte = m_sent < passage.bytes.size() ? passage.bytes[m_sent++] : wire::spiIdle;
    if (m_sent == passage.bytes.size()) {
        if (passage.hangup)
            m_hangup = passage.hangup;
        m_mailbox.fetched(now);
    }
    return byte;
}

void SpiProtocol::deselect(Nanoseconds now) {
    if (m_kind != Kind::message)
        return;
    const Passage passage = pass(m_message, Direction::rx, m_faults);
    if (passage.hangup)
        m_hangup = passage.hangup;
    else if (m_present && !passage.bytes.empty())
        take(passage.bytes, now + passage.late);
}

void SpiProtocol::take(const Bytes &message, Nanoseconds now) {
    if (message[0] != wire::spiStart) {
        m_log.ignored("a message that begins with " + hex(message[0], 2));
    } else if (m_working) {
        m_log.ignored("a message to a chip at work");
    } else {
        m_mailbox.throwAway(now);
        // If not, it waited with its reset for somebody to fetch the answer.
        if (m_mailbox.there(now))
            group(Bytes(message.begin() + 1, message.end()), now);
    }
}

void SpiProtocol::group(const Bytes &group, Nanoseconds now) {
    if (m_resets != m_bootloader.resets()) {
        m_resets = m_bootloader.resets();
        m_synchronised = false;
    }
    const bool opening = group == Bytes{wire::sync};
    if (opening) {
        m_bootloader.drop("ended by a new opening");
        m_mailbox.answer(m_synchronised ? wire::nack : wire::ack, now);
        m_synchronised = true;
    } else if (m_synchronised) {
        m_mailbox.group(group, now);
    } else {
        m_log.ignored("a message in front of the first 7F");
    }
}

void SpiProtocol::losePower(Nanoseconds now) {
    m_mailbox.losePower(now);
    m_hangup.reset();
    m_kind = Kind::none;
}

} // namespace sim
