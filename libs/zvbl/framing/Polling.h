#pragma once

#include <algorithm>
#include <thread>

#include "libs/zvbl/Timing.h"

namespace zvbl {

// Looking again and again at a chip that cannot call: at once, then with pauses that grow to a
// millisecond, so that neither short work is slowed down nor a core is kept busy by long work.
class Polling {
public:
    explicit Polling(TimePoint deadline) : m_deadline(deadline) {}

    // Pauses. False: the deadline is past, and the last look was behind it.
    bool again() {
        const Duration left = m_deadline - Clock::now();
        if (left <= Duration::zero())
            return false;
        if (m_pause > Duration::zero())
            std::this_thread::sleep_for(std::min(m_pause, left));
        m_pause = std::clamp<Duration>(2 * m_pause, shortest, longest);
        return true;
    }

private:
    static constexpr Duration shortest = std::chrono::microseconds(20);
    static constexpr Duration longest = std::chrono::milliseconds(1);

    const TimePoint m_deadline;
    Duration m_pause{};
};

} // namespace zvbl
