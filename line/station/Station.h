#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "line/job/Table.h"
#include "line/station/Link.h"

// What belongs to the place where units are made, as a station file says it; docs/line.md explains its keys.

// Which plans need an approval.
enum class ApprovalRule { irreversible, always };

// The socket for one chip.
struct Nest {
    std::string name;
    std::string port; // of this nest alone; what it is goes by the kind of the link
    Place place;      // of the port
};

// A program of the site.
struct HookCall {
    std::vector<std::string> run; // its absolute path, and its arguments
    int seconds;                  // that it may take
    Place place;                  // of "run"
};

struct Station {
    struct Series {
        std::uint32_t first;
        std::uint32_t last;
    };

    std::string name;
    std::string registerPath;
    Place registerPlace;
    ApprovalRule approval = ApprovalRule::irreversible;
    std::string approved; // directory of the approvals
    int stopAfter = 3;    // failures in a row close a nest; 0 for never
    int retries = 1;      // of an attempt that a failure of the link ended
    int retryAfter = 2;   // seconds, where the chip had been found
    Link link;
    std::vector<Nest> nests; // in the order of the file
    std::map<std::string, Series> series;
    std::optional<HookCall> before;
    std::optional<HookCall> after;
    bool read = false; // from a file, and not what holds without one
};

// Reads the file. Without a name that of the system, and where that is not there what holds without one. Throws
// Refusal, with notAcceptable and file, line and key, for whatever is wrong in it.
Station readStation(const std::string &path);
