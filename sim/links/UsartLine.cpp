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

void UsartLine::replug() {
    m_hangup.reset();
    m_toHost.clear();
    m_rx.replug();
    m_tx.replug();
}

} // namespace sim
