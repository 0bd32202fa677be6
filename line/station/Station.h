#pragma once

#include <cstdint>
#include <map>
#include <string>

// What belongs to the place where units are made, as a station file says it; docs/line.md explains its keys.
struct Station {
    struct Series {
        std::uint32_t first;
        std::uint32_t last;
    };

    std::string name;
    std::string approved; // directory of the approvals
    std::map<std::string, Series> series;
    bool read = false; // from a file, and not what holds without one
};

// Reads the file. Without a name that of the system, and where that is not there what holds without one. Throws
// Refusal, with notAcceptable and file, line and key, for whatever is wrong in it.
Station readStation(const std::string &path);
