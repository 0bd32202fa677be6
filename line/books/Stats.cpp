#include "line/books/Stats.h"

#include <algorithm>

namespace {

constexpr std::size_t passed = 0;

std::size_t placeOf(std::string_view result) {
    const auto found = std::find(Stats::results.begin(), Stats::results.end(), result);
    return static_cast<std::size_t>(found - Stats::results.begin());
}

// Two digits at a place, or four. -1 for what is none.
int digits(std::string_view text, std::size_t at, std::size_t count) {
    int value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9')
            return -1;
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

// Since 1970, in the calendar of Gregory.
std::int64_t daysOf(std::int64_t year, int month, int day) {
    year -= month <= 2 ? 1 : 0; // a year that begins in March has its odd day at the end
    const std::int64_t era = year / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

} // namespace

std::int64_t millisecondsOf(std::string_view time) {
    constexpr std::size_t length = 24;
    if (time.size() != length)
        return 0;
    const std::int64_t days = daysOf(digits(time, 0, 4), digits(time, 5, 2), digits(time, 8, 2));
    const std::int64_t seconds = digits(time, 11, 2) * 3600 + digits(time, 14, 2) * 60 + digits(time, 17, 2);
    return (days * 86400 + seconds) * 1000 + digits(time, 20, 3);
}

void Stats::count(Counts &counts, std::size_t result, std::int64_t milliseconds) {
    ++counts.attempts;
    ++counts.ended[result];
    counts.milliseconds += milliseconds;
}

void Stats::add(const UnitEnd &end) {
    const std::size_t result = placeOf(end.result);
    if (result == results.size())
        return; // the register takes no other
    const std::int64_t took = result == passed ? millisecondsOf(end.ended) - millisecondsOf(end.started) : 0;
    count(m_all, result, took);
    auto nest = m_nests.find(end.nest);
    if (nest == m_nests.end())
        nest = m_nests.emplace(end.nest, Counts()).first;
    count(nest->second, result, took);
    if (!end.cause.empty()) {
        const auto cause = m_causes.find(end.cause);
        if (cause == m_causes.end())
            m_causes.emplace(end.cause, 1);
        else
            ++cause->second;
    }
}

void Stats::add(const ChipEnd &end) {
    const bool passes = end.result == results[passed];
    if (end.uid != m_atChip.uid) {
        m_atChip.uid = end.uid;
        m_atChip.first = end.attempt;
        m_atChip.firstPassed = passes;
        m_atChip.passed = false;
        ++m_chips.made;
        m_chips.first += passes ? 1 : 0;
    }
    if (end.attempt < m_atChip.first) {
        m_chips.first += (passes ? 1 : 0) - (m_atChip.firstPassed ? 1 : 0);
        m_atChip.first = end.attempt;
        m_atChip.firstPassed = passes;
    }
    m_chips.passed += passes && !m_atChip.passed ? 1 : 0;
    m_atChip.passed = m_atChip.passed || passes;
}
