#include "line/gang/Awaited.h"

#include <algorithm>

using namespace std::chrono_literals;

void Awaited::wait(std::chrono::steady_clock::duration atMost) {
    const auto time = std::clamp<std::chrono::steady_clock::duration>(atMost, 0s, 1h);
    poll(m_all.data(), m_all.size(), static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(time).count()));
}

bool Awaited::isReady(const Part &part) const {
    const auto first = m_all.begin() + static_cast<std::ptrdiff_t>(part.first);
    const auto end = m_all.begin() + static_cast<std::ptrdiff_t>(part.end);
    return std::any_of(first, end, [](const pollfd &one) { return one.revents != 0; });
}
