#include "tests/damage/Damage.h"

#include <utility>

#include "tests/damage/VirtualTime.h"

namespace damage {
namespace {

constexpr std::size_t longestBurst = 24;
constexpr sim::Nanoseconds burstTime = 5 * sim::millisecond; // it does not wait for a host that does
constexpr std::size_t longestDelayMs = 1500;                 // beyond every time limit

} // namespace

void Lane::harm(Kind kind, std::vector<std::size_t> places, std::uint32_t seed) {
    m_kind = kind;
    m_places = std::move(places);
    m_random.seed(seed);
}

std::vector<Lane::Unit> Lane::pass(std::size_t count) {
    std::vector<Unit> units;
    units.reserve(count + 1);
    for (std::size_t index = 0; index < count; ++index)
        one(index, index + 1 == count, units);
    return units;
}

void Lane::one(std::size_t index, bool last, std::vector<Unit> &units) {
    if (m_ended) {
        ++m_passed;
        return;
    }
    units.push_back({index, 0, 0});
    if (std::exchange(m_swap, false))
        std::swap(units[units.size() - 2], units.back());
    if (m_burst > 0 && now() <= m_burstEnd)
        changeBits(units.back());
    m_burst -= m_burst > 0 ? 1 : 0;
    const std::size_t number = m_passed++;
    const bool alone = m_kind == Kind::swapped && last; // nothing to change places with: the next that has
    if (m_next == m_places.size() || number < m_places[m_next] || alone)
        return;
    ++m_next;
    harmLast(units);
}

void Lane::harmLast(std::vector<Unit> &units) {
    Unit &unit = units.back();
    switch (m_kind) {
    case Kind::bit: unit.mask = static_cast<std::uint8_t>(1 << random(0, 7)); break;
    case Kind::burst:
        changeBits(unit);
        m_burst = random(1, longestBurst - 1);
        m_burstEnd = now() + burstTime;
        break;
    case Kind::silent:
    case Kind::gone: m_ended = true; [[fallthrough]];
    case Kind::lost: units.pop_back(); break;
    case Kind::doubled: units.push_back(unit); break;
    case Kind::swapped: m_swap = true; break;
    case Kind::late: unit.late = static_cast<sim::Nanoseconds>(random(1, longestDelayMs)) * sim::millisecond; break;
    }
}

void Lane::changeBits(Unit &unit) {
    unit.mask = static_cast<std::uint8_t>(random(1, 255));
}

std::size_t Lane::random(std::size_t from, std::size_t to) {
    return from + m_random() % (to - from + 1);
}

} // namespace damage
