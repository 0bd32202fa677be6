#include "sim/links/UsartLine.h"

namespace sim {

void UsartLine::fromHost(std::uint8_t byte, Nanoseconds now, unsigned baud) {
    if (hangup_)
        return;
    const Lane::Ride ride = rx_.carry({byte}, now, baud);
    hangup_ = ride.passage.hangup;
    for (const Nanoseconds arrival : ride.through) {
        if (!ride.passage.lost) {
            chip_.receive(ride.passage.inPlace[0], arrival);
            collect(baud);
        }
    }
}

void UsartLine::collect(unsigned baud) {
    for (const TimedByte &timed : chip_.takeOutput())
        if (!hangup_)
            deliver(timed, baud);
}

void UsartLine::deliver(const TimedByte &timed, unsigned baud) {
    const Lane::Ride ride = tx_.carry({timed.byte}, timed.at, baud);
    hangup_ = ride.passage.hangup;
    for (const Nanoseconds at : ride.through) {
        chip_.sent(at);
        if (!ride.passage.lost)
            toHost_.push_back({ride.passage.inPlace[0], at});
    }
}

void UsartLine::replug() {
    hangup_.reset();
    toHost_.clear();
    rx_.replug();
    tx_.replug();
}

} // namespace sim
