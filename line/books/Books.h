#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "line/register/Database.h"

// Which attempts are asked for: those for which all holds that is said.
struct Wanted {
    std::optional<std::string> uid; // lower-case hexadecimal digits
    std::optional<std::int64_t> number;
    std::optional<std::string> order;
    std::optional<std::string> since; // the beginning of a time as records tell it
    std::optional<std::string> result;
};

// A line of a list of attempts.
struct UnitLine {
    std::int64_t attempt;
    std::string started;
    std::string nest;
    std::string order;
    std::string result;
    std::string series;
    std::optional<std::int64_t> number;
    std::string uid;
    std::string cause;
};

// How an attempt ended; until the next one.
struct UnitEnd {
    std::string_view nest;
    std::string_view result;
    std::string_view cause;
    std::string_view started;
    std::string_view ended;
};

// The same at a chip that was identified; until the next one.
struct ChipEnd {
    std::string_view uid;
    std::string_view result;
    std::int64_t attempt;
};

// A register that is only read, by whoever may read its files; lines that work on it go on meanwhile, and nothing of
// what they do is seen after the first answer. Whatever goes wrong is a Refusal with registerUnusable.
class Books {
public:
    explicit Books(const std::string &path);

    // Each attempt, the oldest first.
    void units(const Wanted &wanted, const std::function<void(const UnitLine &)> &take);
    // The record of each, as it was written, until the next one.
    void records(const Wanted &wanted, const std::function<void(std::string_view)> &take);
    void ends(const Wanted &wanted, const std::function<void(const UnitEnd &)> &take);
    // Those that were begun and have ended, all of one chip after the other, in no order otherwise.
    void endsByChip(const Wanted &wanted, const std::function<void(const ChipEnd &)> &take);
    // Of all stations.
    std::int64_t undelivered();

private:
    void each(const char *what, const Wanted &wanted, const char *order,
              const std::function<void(const SqlRow &)> &take);

    Database m_database;
};
