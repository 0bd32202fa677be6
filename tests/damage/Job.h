#pragma once

#include <cstdint>
#include <memory>

#include "link/ZVBLLIB.h"
#include "tests/damage/Line.h"

namespace damage {

struct LinkRow {
    const char *name;
    BYTE type; // as TARGET_SetComIntType takes it
    const char *port;
    std::unique_ptr<Line> (*make)(const sim::ChipFacts &facts);
    bool frames; // harm befalls frames
};

extern const LinkRow links[4];

enum class Action { download, verifiedByCrc, verifiedByReading, upload };

struct ActionRow {
    Action action;
    const char *name;
    bool mayLie; // nothing looks at what came of it
};

constexpr ActionRow actions[] = {
    {Action::download, "download", true},
    {Action::verifiedByCrc, "download verified by CRC", false},
    {Action::verifiedByReading, "download verified by reading", false},
    {Action::upload, "upload", false},
};

// What is to go wrong in one job.
struct Harm {
    Kind kind = Kind::bit;
    std::vector<std::size_t> toChip; // places, as Lane::harm() takes them
    std::vector<std::size_t> toHost;
    std::uint32_t seed = 0;
};

enum class Outcome { repaired, reported, lied };

struct Result {
    Outcome outcome;
    int status;         // of the library
    std::size_t toChip; // units that went by
    std::size_t toHost;
};

// One job on a new chip with content: from the opening of the link to its end. `random` makes the content.
Result runJob(const LinkRow &link, Action action, const Harm &harm, std::uint32_t random);

} // namespace damage
