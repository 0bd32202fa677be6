#include "sim/links/Mailbox.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

void Mailbox::group(const Bytes &bytes, Nanoseconds now) {
    if (m_bootloader.idle()) {
        opening(bytes, now);
        return;
    }
    const std::size_t length = m_bootloader.groupLength(bytes);
    if (bytes.size() == length)
        for (const std::uint8_t byte : bytes)
            m_bootloader.feed(byte, now);
    else
        m_bootloader.refuseGroup(
            std::to_string(bytes.size()) + " bytes where a group of " + std::to_string(length) + " belongs", now);
    collect();
}

void Mailbox::opening(const Bytes &bytes, Nanoseconds now) {
    if (bytes.size() != 2) {
        m_bootloader.refuse(std::to_string(bytes.size()) + " bytes where an opcode and its complement belong", now);
    } else if ((bytes[0] ^ bytes[1]) != 0xFF) {
        m_bootloader.refuse("an opcode with a wrong complement", now);
    } else {
        m_bootloader.command(bytes[0], now);
        collect();
        return;
    }
    const std::vector<Output> refusal = m_bootloader.takeOutput();
    m_answers.insert(m_answers.end(), refusal.begin(), refusal.end());
}

// After a command or one of its groups.
void Mailbox::collect() {
    const std::vector<Output> output = m_bootloader.takeOutput();
    m_answers.insert(m_answers.end(), output.begin(), output.end());
    if (!m_bootloader.idle() || m_bootloader.ended() == Next::end)
        return;
    if (m_bootloader.ended() == Next::powerLost)
        forget();
    else if (!m_answers.empty())
        m_departure = m_bootloader.ended();
}

void Mailbox::answer(std::uint8_t byte, Nanoseconds now) {
    m_answers.push_back({{byte}, now});
}

void Mailbox::followDeparture(Nanoseconds now) {
    if (m_departure == Next::reset)
        m_bootloader.startFrom(now);
    m_departure.reset();
}

void Mailbox::fetched(Nanoseconds now) {
    leaving.reset();
    m_answers.pop_front();
    if (m_answers.empty())
        followDeparture(now);
}

void Mailbox::throwAway(Nanoseconds now) {
    leaving.reset();
    m_answers.clear();
    followDeparture(now);
}

void Mailbox::forget() {
    leaving.reset();
    m_answers.clear();
    m_departure.reset();
}

void Mailbox::reset(Nanoseconds now) {
    forget();
    m_bootloader.reset(now);
}

void Mailbox::losePower(Nanoseconds now) {
    forget();
    m_bootloader.losePower(now);
}

} // namespace sim
