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
        hangup_ = ride.passage.hangup;
    else if (frame.data.empty())
        frame.id ^= ride.passage.inPlace[0];
    else
        frame.data = ride.passage.inPlace;
    return ride;
}

CanLine::Sent CanLine::fromHost(const CanFrame &sent, Nanoseconds now, unsigned speed) {
    Sent result{now};
    if (hangup_)
        return result;
    CanFrame frame = sent;
    const unsigned pace = !pace_ ? 0 : speed != 0 ? speed : chip_.speed(now);
    const Lane::Ride ride = carry(rx_, frame, now, pace);
    for (const Nanoseconds at : ride.through) {
        result.through = at;
        if (!ride.passage.lost) {
            result.noise = !chip_.receive(frame, speed, at);
            for (TimedFrame &timed : chip_.takeOutput())
                deliver(std::move(timed));
        }
    }
    return result;
}

void CanLine::deliver(TimedFrame timed) {
    if (hangup_)
        return;
    const Lane::Ride ride = carry(tx_, timed.frame, timed.at, pace_ ? timed.speed : 0);
    for (const Nanoseconds at : ride.through) {
        timed.at = at;
        chip_.sent(timed, at);
        if (!ride.passage.lost)
            toHost_.push_back(timed);
    }
}

void CanLine::replug() {
    hangup_.reset();
    toHost_.clear();
    rx_.replug();
    tx_.replug();
}

} // namespace sim
