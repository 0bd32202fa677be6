#include "sim/links/SerialLine.h"

#include <algorithm>
#include <utility>

namespace sim {

Nanoseconds Pacer::through(Nanoseconds ready, unsigned baud, Nanoseconds late, unsigned bits) {
    if (ready > free_ || late != 0 || baud != baud_) {
        remainder_ = 0;
        baud_ = baud;
    }
    free_ = std::max(free_, ready) + late;
    if (baud != 0) {
        const Nanoseconds work = bits * second + remainder_;
        free_ += work / baud;
        remainder_ = work % baud;
    }
    return free_;
}

void SerialLine::fromHost(std::uint8_t byte, Nanoseconds now, unsigned baud) {
    if (hangup_)
        return;
    const ByteEffect effect = faults_.byte(Direction::rx);
    if (effect.hangup) {
        hangup_ = Hangup{effect.replugMs};
        return;
    }
    Nanoseconds late = effect.lateMs * millisecond;
    for (int copies = effect.doubled ? 2 : 1; copies > 0; --copies) {
        const Nanoseconds arrival = rx_.through(now, baud, std::exchange(late, 0));
        if (!effect.lost) {
            chip_.receive(static_cast<std::uint8_t>(byte ^ effect.damage), arrival);
            collect(baud);
        }
    }
}

void SerialLine::collect(unsigned baud) {
    for (const TimedByte &timed : chip_.takeOutput())
        if (!hangup_)
            deliver(timed.byte, timed.at, baud);
}

void SerialLine::deliver(std::uint8_t byte, Nanoseconds ready, unsigned baud) {
    const ByteEffect effect = faults_.byte(Direction::tx);
    if (effect.hangup) {
        hangup_ = Hangup{effect.replugMs};
        return;
    }
    Nanoseconds late = effect.lateMs * millisecond;
    for (int copies = effect.doubled ? 2 : 1; copies > 0; --copies) {
        const Nanoseconds at = tx_.through(ready, baud, std::exchange(late, 0));
        chip_.sent(at);
        if (!effect.lost)
            toHost_.push_back({static_cast<std::uint8_t>(byte ^ effect.damage), at});
    }
}

void SerialLine::replug() {
    hangup_.reset();
    toHost_.clear();
    rx_ = Pacer{};
    tx_ = Pacer{};
}

} // namespace sim
