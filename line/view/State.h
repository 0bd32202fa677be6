#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

// What a screen shows of a line at one moment. Whoever works the line keeps it; a view only draws it. Texts may come
// from files and chips: a view makes them harmless.

enum class Phase {
    empty,   // no port, or no unit yet
    ready,   // waits for the operator's key
    busy,    // a step runs
    pass,    // until the unit has gone
    fail,    // until the unit has gone; "why" tells
    refused, // not begun; "why" tells
    closed   // too many failures in a row; "why" tells, and the operator's key opens it
};

struct NestState {
    std::string name;
    Phase phase = Phase::empty;
    std::string step = {};                    // while busy
    int percent = -1;                         // of the step; -1 where it tells none
    std::optional<std::uint32_t> number = {}; // that the unit has got
    std::string why = {};                     // in the operator's words
};

struct State {
    std::string title;     // the job's name
    std::string plan;      // its hash
    std::string order;     // empty for none
    std::int64_t made = 0; // units of the order that have passed, in all shifts
    std::int64_t quantity = 0;
    std::vector<NestState> nests; // in the order of the station file

    // Of this run.
    int passed = 0;
    int failed = 0;
    double unitsPerHour = 0;   // 0 while it is not known
    double secondsPerUnit = 0; // 0 while it is not known
    int undelivered = 0;
    std::map<std::string, int> failures; // by the name of the cause
    std::string notice;                  // about the whole line; empty for none
};
