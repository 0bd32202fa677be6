#pragma once

#include <algorithm>

#include "sim/chip/Time.h"

namespace sim {

// What a port that sleeps until its bytes are due is late by, and gives back: the next bytes of the host count as
// sent so much earlier, so that a whole job takes the time that it takes on a wire.
class Lateness {
public:
    static constexpr Nanoseconds mostAtOnce = 250 * microsecond;
    static constexpr int shareOfFrame = 4; // never more than a quarter of what the host's bytes take themselves

    void add(Nanoseconds late) { m_owed += std::max<Nanoseconds>(late, 0); }

    // What is given back now; the rest stays. `frame` is the time that the host's bytes take on the line, `room`
    // the time since the chip's last byte was due: nobody answers before the question is out.
    Nanoseconds giveBack(Nanoseconds frame, Nanoseconds room) {
        const Nanoseconds most = std::min({mostAtOnce, frame / shareOfFrame, room});
        const Nanoseconds given = std::clamp<Nanoseconds>(most, 0, m_owed);
        m_owed -= given;
        return given;
    }

private:
    Nanoseconds m_owed = 0;
};

} // namespace sim
