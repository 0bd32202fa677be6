#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>

#include "sim/chip/Time.h"

namespace sim {

// When a port wakes for what is due to its host: when so many are due, as the buffer of a real one does it, or
// the last before a pause.
template <class Timed>
Nanoseconds wakeFor(const std::deque<Timed> &queue, std::size_t bufferSize) {
    constexpr Nanoseconds pause = 250 * microsecond;
    std::size_t last = 0;
    while (last + 1 < std::min(bufferSize, queue.size()) && queue[last + 1].at - queue[last].at <= pause)
        ++last;
    return queue[last].at;
}

// What a port that sleeps until its bytes are due is late by, and gives back: the next bytes of the host count as
// sent so much earlier, and a long answer comes so much sooner, so that a whole job takes the time that it takes on
// a wire.
class Lateness {
public:
    static constexpr Nanoseconds mostAtOnce = 250 * microsecond;
    static constexpr int shareOfFrame = 4; // never more than a quarter of what the bytes take themselves
    static constexpr Nanoseconds mostUnseen = 50 * microsecond;

    // Bytes for the host were late by that. Those that it answers with are picked up by a port that has to wake as
    // well. When they were sent it cannot see: that is taken for as late again, up to a limit.
    void add(Nanoseconds late) {
        const Nanoseconds seen = std::max<Nanoseconds>(late, 0);
        m_owed += seen + std::min(seen, mostUnseen);
    }

    // What can be given back now. `frame` is the time that the bytes take on the line, `room` the time since the
    // chip's last byte was due: nobody answers before the question is out.
    Nanoseconds offer(Nanoseconds frame, Nanoseconds room) const {
        return std::clamp<Nanoseconds>(std::min({mostAtOnce, frame / shareOfFrame, room}), 0, m_owed);
    }

    // So much of it was; the rest stays.
    void given(Nanoseconds time) { m_owed -= time; }

private:
    Nanoseconds m_owed = 0;
};

} // namespace sim
