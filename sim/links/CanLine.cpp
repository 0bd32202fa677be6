#include "sim/links/CanLine.h"

#include <algorithm>
#include <utility>

namespace sim {

unsigned bitsOf(const CanFrame &frame) {
    constexpr unsigned tail = 13; // CRC delimiter, acknowledgement, end of frame, pause: never stuffed
    const unsigned head = frame.extended ? 54 : 34;
    const unsigned data = frame.remote ? 0 : 8 * static_cast<unsigned>(frame.data.size());
    return head + data + tail + (head + data) / 10;
}

// What befalls one byte befalls its frame, but damage. A frame without data goes by as one byte: its
// identifier. False when the bus is unplugged instead.
bool CanLine::befall(CanFrame &frame, Direction direction, ByteEffect &effect) {
    if (!concernsChip(frame))
        return true;
    for (std::size_t i = 0; i < std::max<std::size_t>(frame.data.size(), 1); ++i) {
        const ByteEffect one = faults_.byte(direction);
        if (one.hangup) {
            hangup_ = Hangup{one.replugMs};
            return false;
        }
        effect.lost |= one.lost;
        effect.doubled |= one.doubled;
        effect.lateMs += one.lateMs;
        if (frame.data.empty())
            frame.id ^= one.damage;
        else
            frame.data[i] = static_cast<std::uint8_t>(frame.data[i] ^ one.damage);
    }
    return true;
}

CanLine::Passage CanLine::fromHost(const CanFrame &sent, Nanoseconds now, unsigned speed) {
    CanFrame frame = sent;
    ByteEffect effect;
    Passage passage{now};
    if (hangup_ || !befall(frame, Direction::rx, effect))
        return passage;
    const unsigned pace = !pace_ ? 0 : speed != 0 ? speed : chip_.speed(now);
    Nanoseconds late = effect.lateMs * millisecond;
    for (int copies = effect.doubled ? 2 : 1; copies > 0; --copies) {
        passage.through = rx_.through(now, pace, std::exchange(late, 0), bitsOf(frame));
        if (!effect.lost) {
            passage.noise = !chip_.receive(frame, speed, passage.through);
            for (TimedFrame &timed : chip_.takeOutput())
                deliver(std::move(timed));
        }
    }
    return passage;
}

void CanLine::deliver(TimedFrame timed) {
    ByteEffect effect;
    if (hangup_ || !befall(timed.frame, Direction::tx, effect))
        return;
    const Nanoseconds ready = timed.at;
    Nanoseconds late = effect.lateMs * millisecond;
    for (int copies = effect.doubled ? 2 : 1; copies > 0; --copies) {
        timed.at = tx_.through(ready, pace_ ? timed.speed : 0, std::exchange(late, 0), bitsOf(timed.frame));
        chip_.sent(timed, timed.at);
        if (!effect.lost)
            toHost_.push_back(timed);
    }
}

void CanLine::replug() {
    hangup_.reset();
    toHost_.clear();
    rx_ = Pacer{};
    tx_ = Pacer{};
}

} // namespace sim
