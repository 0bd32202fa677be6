#include "sim/links/usb/UsbCable.h"

#include <algorithm>

namespace sim {

namespace {

// A full-speed frame of 1 ms has room for 19 packets of 64 bytes. The setup and status stages of a transfer
// take about half a packet's time.
constexpr std::size_t packetLength = 64;
constexpr Nanoseconds packetTime = millisecond / 19;
constexpr Nanoseconds stagesTime = packetTime / 2;

} // namespace

Nanoseconds UsbCable::busTime(std::size_t length) const {
    const auto packets = static_cast<Nanoseconds>((length + packetLength - 1) / packetLength);
    return m_pace ? stagesTime + packets * packetTime : 0;
}

// All bytes of a data stage; a stage without data counts as one byte. `data` becomes what arrives.
Passage UsbCable::carry(Direction direction, Bytes &data) {
    Passage passage = pass(data.empty() ? Bytes{0} : data, direction, m_faults);
    if (data.empty()) {
        passage.lost |= passage.damaged;
        return passage;
    }
    // The length of a transfer is told before it: of too many bytes the last ones fall off.
    Bytes arrived = passage.bytes;
    arrived.resize(data.size());
    data = arrived;
    return passage;
}

void UsbCable::unplug(const Hangup &hangup, Nanoseconds now) {
    m_unplugged = true;
    m_replugAt = hangup.replugMs ? std::optional(now + *hangup.replugMs * millisecond) : std::nullopt;
}

UsbAnswer UsbCable::control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    advance(now);
    if (m_unplugged)
        return UsbAnswer::silent();
    const Nanoseconds start = std::max(now, m_free);
    if (setup.standard())
        return m_device.control(setup, out, start);
    Bytes data = out;
    const Passage passage = setup.towardsHost() ? Passage{} : carry(Direction::rx, data);
    if (passage.hangup)
        unplug(*passage.hangup, now);
    if (passage.hangup || passage.lost)
        return UsbAnswer::silent();
    const Nanoseconds way = setup.towardsHost() ? 0 : busTime(data.size());
    const Nanoseconds arrival = start + passage.late + way;
    UsbAnswer answer = m_device.control(setup, data, arrival);
    if (passage.doubled && out.empty())
        answer = m_device.control(setup, data, arrival);
    m_free = arrival;
    return deliver(setup, answer, arrival);
}

UsbAnswer UsbCable::deliver(const UsbSetup &setup, UsbAnswer answer, Nanoseconds arrival) {
    if (answer.kind == UsbAnswer::Kind::silent || !setup.towardsHost())
        return answer;
    if (answer.kind == UsbAnswer::Kind::done && !answer.data.empty()) {
        const Passage passage = carry(Direction::tx, answer.data);
        if (passage.hangup)
            unplug(*passage.hangup, arrival);
        if (passage.hangup || passage.lost)
            return UsbAnswer::silent();
        answer.at += passage.late;
    }
    answer.at += busTime(answer.data.size());
    m_free = answer.at;
    m_device.delivered(answer.at);
    return answer;
}

UsbAnswer UsbCable::out(std::uint8_t endpoint, const Bytes &data, Nanoseconds now) {
    advance(now);
    return m_unplugged ? UsbAnswer::silent() : m_device.out(endpoint, data, now);
}

UsbAnswer UsbCable::in(std::uint8_t endpoint, std::size_t length, Nanoseconds now) {
    advance(now);
    return m_unplugged ? UsbAnswer::silent() : m_device.in(endpoint, length, now);
}

// ---- coming and going

void UsbCable::advance(Nanoseconds now) {
    if (m_replugAt && now >= *m_replugAt) {
        m_unplugged = false;
        m_free = *m_replugAt;
        m_device.losePower(*m_replugAt); // the board has its power from the port
        m_replugAt.reset();
    }
}

UsbPresence UsbCable::presence(Nanoseconds now) {
    advance(now);
    UsbPresence presence = m_device.presence(now);
    presence.attached = presence.attached && !m_unplugged;
    presence.forGood = m_unplugged && !m_replugAt;
    return presence;
}

std::optional<Nanoseconds> UsbCable::nextEvent(Nanoseconds now) {
    advance(now);
    return m_unplugged ? m_replugAt : m_device.nextEvent(now);
}

void UsbCable::pressReset(Nanoseconds now) {
    advance(now);
    if (!m_unplugged) // without power there is no reset
        m_device.pressReset(std::max(now, m_free));
}

void UsbCable::losePower(Nanoseconds now) {
    advance(now);
    m_device.losePower(now);
}

} // namespace sim
