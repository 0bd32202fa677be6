#include "sim/links/Passage.h"

#include <algorithm>
#include <utility>

namespace sim {

Passage pass(const Bytes &bytes, Direction direction, Faults &faults) {
    Passage passage;
    for (const std::uint8_t byte : bytes) {
        const ByteEffect effect = faults.byte(direction);
        if (effect.hangup) {
            passage.hangup = Hangup{effect.replugMs};
            break;
        }
        const auto arrives = static_cast<std::uint8_t>(byte ^ effect.damage);
        const std::size_t copies = effect.lost ? 0 : effect.doubled ? 2 : 1;
        passage.bytes.insert(passage.bytes.end(), copies, arrives);
        passage.inPlace.push_back(arrives);
        passage.late += effect.lateMs * millisecond;
        passage.lost |= effect.lost;
        passage.doubled |= effect.doubled;
        passage.damaged |= effect.damage != 0;
    }
    return passage;
}

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

Lane::Ride Lane::carry(const Bytes &bytes, Nanoseconds ready, unsigned baud, unsigned bits) {
    Ride ride{pass(bytes, direction_, faults_), {}};
    Nanoseconds late = ride.passage.late;
    const int copies = ride.passage.hangup ? 0 : ride.passage.doubled ? 2 : 1;
    for (int copy = 0; copy < copies; ++copy)
        ride.through.push_back(pacer_.through(ready, baud, std::exchange(late, 0), bits));
    return ride;
}

Nanoseconds Lane::carryUnharmed(Nanoseconds ready, unsigned baud, unsigned bits) {
    return pacer_.through(ready, baud, 0, bits);
}

} // namespace sim
