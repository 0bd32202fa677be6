#pragma once

#include <map>
#include <string>

#include "line/rehearsal/Attempt.h"
#include "line/station/Station.h"

// One unit on a simulated chip: nothing is recorded, no number is used up.
struct Rehearsal {
    const Job &job;
    const Plan &plan;
    const Runs &image;
    const Station &station;
    std::string order;                         // of the line
    std::map<std::string, std::string> supply; // in the place of the hook's
    std::string keep;                          // file for the chip's memory; may be empty

    // The number that the unit has: the first one of its series, 1 without a station.
    std::uint32_t number() const;
    // The series of the job, empty where it takes no number.
    std::string series() const;
    Outcome run(const Attempt::Tell &tell) const;
};
