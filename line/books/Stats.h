#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "line/books/Books.h"

// Counts how attempts ended.
class Stats {
public:
    static constexpr std::array<const char *, 5> results = {"pass", "fail", "refused", "interrupted", "open"};

    struct Counts {
        std::int64_t attempts = 0;
        std::array<std::int64_t, results.size()> ended = {}; // by result
        std::int64_t milliseconds = 0;                       // from beginning to end, of those that passed
    };
    struct Chips {
        std::int64_t made = 0;   // those at which an attempt was begun and has ended
        std::int64_t passed = 0; // at least once
        std::int64_t first = 0;  // at the first attempt
    };

    struct ByNumber { // A2 in front of A10
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const {
            return a.size() != b.size() ? a.size() < b.size() : a < b;
        }
    };
    using Nests = std::map<std::string, Counts, ByNumber>;

    void add(const UnitEnd &end);
    // All of one chip after the other.
    void add(const ChipEnd &end);

    const Counts &all() const { return m_all; }
    const Nests &nests() const { return m_nests; }
    using Causes = std::map<std::string, std::int64_t, std::less<>>;
    const Causes &causes() const { return m_causes; }
    const Chips &chips() const { return m_chips; }

private:
    static void count(Counts &counts, std::size_t result, std::int64_t milliseconds);

    Counts m_all;
    Nests m_nests;
    Causes m_causes;
    Chips m_chips;
    struct AtChip {
        std::string uid;
        std::int64_t first = 0; // attempt so far
        bool firstPassed = false;
        bool passed = false;
    };
    AtChip m_atChip; // the last one
};

// Milliseconds since 1970 of a time as records tell it, "2026-11-21T18:04:20.113Z". 0 for what is none.
std::int64_t millisecondsOf(std::string_view time);
