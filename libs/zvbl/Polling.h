#pragma once

#include <algorithm>
#include <thread>

#include "libs/zvbl/Timing.h"

namespace zvbl {

// Looking again and again at a chip that cannot call. The pauses are an eighth of what it has taken so far,
// and no longer than a millisecond: nothing comes much later than it could, and no core is kept busy.
class Polling {
public:
    explicit Polling(TimePoint deadline) : m_begin(Clock::now()), m_deadline(deadline) {}

    // Pauses. False: the deadline is past, and the last look was after it.
    bool again() {
        const TimePoint now = Clock::now();
        if (now >= m_deadline)
            return false;
        const Duration pause = std::min<Duration>((now - m_begin) / part, longest);
        if (pause >= shortest) // below, a look takes as long as the pause would
            std::this_thread::sleep_for(std::min<Duration>(pause, m_deadline - now));
        return true;
    }

private:
    static constexpr int part = 8;
    static constexpr Duration shortest = std::chrono::microseconds(20);
    static constexpr Duration longest = std::chrono::milliseconds(1);

    const TimePoint m_begin;
    const TimePoint m_deadline;
};

} // namespace zvbl
