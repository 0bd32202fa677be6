#include "sim/links/UsartLine.h"

namespace sim {

void UsartLine::fromHost(std::uint8_t byte, Nanoseconds now, unsigned baud) {
    if (m_hangup)
        return;
    const Lane::Ride ride = m_rx.carry({byte}, now, baud);
    m_hangup = ride.passage.hangup;
    for (const Nanoseconds arrival : ride.through) {
        if (!ride.passage.lost) {
            m_chip.receive(ride.passage.inPlace[0], arrival);
            collect(baud);
        }
    }
}

void UsartLine::collect(unsigned baud) {
    for (const TimedByte &timed : m_chip.takeOutput())
        if (!m_hangup)
            deliver(timed, baud);
}

void UsartLine::deliver(const TimedByte &timed, unsigned baud) {
    const Lane::Ride ride = m_tx.carry({timed.byte}, timed.at, baud);
    m_hangup = ride.passage.hangup;
    for (const Nanoseconds at : ride.through) {
        m_chip.sent(at);
        if (!ride.passage.lost)
            m_toHost.push_back({ride.passage.inPlace[0], at});
    }
}

void UsartLine::hasten(std::size_t count, Nanoseconds time) {
    const std::size_t first = m_toHost.size() - count;
    for (std::size_t i = 1; i < count; ++i)
        m_toHost[first + i].at -= time * static_cast<Nanoseconds>(i) / static_cast<Nanoseconds>(count - 1);
    m_tx.gain(time);
}

void UsartLine::replug() {
    m_hangup.reset();
    m_toHost.clear();
    m_rx.replug();
    m_tx.replug();
}

} // namespace sim
