#pragma once

#include <string>

// Whether another try may help.
enum class Retry {
    none,
    atOnce,
    later // what was lost has to be found anew
};

// Why a unit was not made: a fixed list, of which records, books and hooks tell the name.
struct Cause {
    const char *name;
    const char *words; // for the operator: what it is, and what to look at
    Retry retry;
    bool tellsText; // the attempt's own text says more than the words
};

// Of a name; for one that is not in the list, words that say so.
const Cause &causeOf(const std::string &name);

// What the operator is told.
std::string whyOf(const std::string &cause, const std::string &text);
