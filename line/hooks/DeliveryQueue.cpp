#include "line/hooks/DeliveryQueue.h"

#include <algorithm>

namespace {

constexpr std::chrono::seconds firstPause{1};
constexpr std::chrono::seconds longestPause{300};

} // namespace

DeliveryQueue::Running::Running(std::int64_t number, const HookCall &call, const Json &record)
    : attempt(number), hook(call, record) {}

DeliveryQueue::DeliveryQueue(Register &units, std::string station, const std::optional<HookCall> &call)
    : m_units(units), m_station(std::move(station)), m_call(call), m_waiting(units.howManyUndelivered(m_station)),
      m_pause(firstPause), m_again(Clock::now()) {}

void DeliveryQueue::added() {
    ++m_waiting;
    m_new = true;
}

void DeliveryQueue::watch(std::vector<pollfd> &all) const {
    if (m_running)
        m_running->hook.watch(all);
}

DeliveryQueue::Clock::time_point DeliveryQueue::wakeUp() const {
    if (m_running)
        return m_running->hook.deadline();
    if (!m_call || m_waiting == 0)
        return Clock::time_point::max();
    return m_new ? Clock::time_point() : m_again;
}

void DeliveryQueue::proceed() {
    if (m_running && m_running->hook.proceed())
        finish(m_running->hook.end());
    if (!m_running && wakeUp() <= Clock::now())
        beginNext();
}

void DeliveryQueue::beginNext() {
    const std::vector<Register::Delivery> next = m_units.undelivered(m_station, 1);
    if (next.empty())
        m_waiting = 0; // another process of this station has delivered them
    m_new = !next.empty() && next.front().tries == 0;
    if (m_new || (!next.empty() && Clock::now() >= m_again))
        m_running =
            std::make_unique<Running>(next.front().attempt, *m_call, Json::parse(next.front().record, nullptr, false));
}

void DeliveryQueue::finish(const HookEnd &end) {
    const std::int64_t attempt = m_running->attempt;
    m_trouble = end.failure;
    m_running.reset();
    if (m_trouble.empty()) {
        m_units.delivered(attempt);
        --m_waiting;
        m_pause = firstPause;
        m_again = Clock::now();
        return;
    }
    m_units.notDelivered(attempt, m_trouble);
    m_again = Clock::now() + m_pause;
    m_pause = std::min(m_pause * 2, longestPause);
}
