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
    if (ready > m_free || late != 0 || baud != m_baud) {
        m_remainder = 0;
        m_baud = baud;
    }
    m_free = std::max(m_free, ready) + late;
    if (baud != 0) {
        const Nanoseconds work = bits * second + m_remainder;
        m_free += work / baud;
        m_remainder = work % baud;
    }
    return m_free;
}

Lane::Ride Lane::carry(const Bytes &bytes, Nanoseconds ready, unsigned baud, unsigned bits) {
    Ride ride{pass(bytes, m_direction, m_faults), {}};
    Nanoseconds late = ride.passage.late;
    const int copies = ride.passage.hangup ? 0 : ride.passage.doubled ? 2 : 1;
    for (int copy = 0; copy < copies; ++copy)
        ride.through.push_back(m_pacer.through(ready, baud, std::exchange(late, 0), bits));
    return ride;
}

Nanoseconds Lane::carryUnharmed(Nanoseconds ready, unsigned baud, unsigned bits) {
    return m_pacer.through(ready, baud, 0, bits);
}

} // namespace sim
