#include "sim/links/CanLine.h"

#include <utility>

namespace sim {

unsigned bitsOf(const CanFrame &frame) {
    constexpr unsigned tail = 13; // CRC delimiter, acknowledgement, end of frame, pause: never stuffed
    const unsigned head = frame.extended ? 54 : 34;
    const unsigned data = frame.remote ? 0 : 8 * static_cast<unsigned>(frame.data.size());
    return head + data + tail + (head + data) / 10;
}

// The bytes by which faults count a frame. One without data goes by as one byte: its identifier.
static Bytes countedBytes(const CanFrame &frame) {
    return frame.data.empty() ? Bytes{0} : frame.data;
}

// What befalls one byte befalls its frame, but damage.
Lane::Ride CanLine::carry(Lane &lane, CanFrame &frame, Nanoseconds ready, unsigned speed) {
    if (!concernsChip(frame))
        return {{}, {lane.carryUnharmed(ready, speed, bitsOf(frame))}};
    Lane::Ride ride = lane.carry(countedBytes(frame), ready, speed, bitsOf(frame));
    if (ride.passage.hangup)
        m_hangup = ride.passage.hangup;
    else if (frame.data.empty())
        frame.id ^= ride.passage.inPlace[0];
    else
        frame.data = ride.passage.inPlace;
    return ride;
}

CanLine::Sent CanLine::fromHost(const CanFrame &sent, Nanoseconds now, unsigned speed) {
    Sent result{now};
    if (m_hangup)
        return result;
    CanFrame frame = sent;
    const unsigned pace = !m_pace ? 0 : speed != 0 ? speed : m_chip.speed(now);
    const Lane::Ride ride = carry(m_rx, frame, now, pace);
    for (const Nanoseconds at : ride.through) {
        result.through = at;
        if (!ride.passage.lost) {
            result.noise = !m_chip.receive(frame, speed, at);
            for (TimedFrame &timed : m_chip.takeOutput())
                deliver(std::move(timed));
        }
    }
    return result;
}

void CanLine::deliver(TimedFrame timed) {
    if (m_hangup)
        return;
    const Lane::Ride ride = carry(m_tx, timed.frame, timed.at, m_pace ? timed.speed : 0);
    for (const Nanoseconds at : ride.through) {
        timed.at = at;
        m_chip.sent(timed, at);
        if (!ride.passage.lost)
            m_toHost.push_back(timed);
    }
}

void CanLine::replug() {
    m_hangup.reset();
    m_toHost.clear();
    m_rx.replug();
    m_tx.replug();
}

} // namespace sim
