#pragma once

#include <functional>
#include <map>
#include <string>

#include "line/gang/Attempt.h"
#include "line/job/Job.h"
#include "line/plan/Plan.h"
#include "line/plan/UnitImage.h"
#include "line/station/Station.h"

// The image of the unit whose identifier this is, 12 bytes.
using MakeImage = std::function<Runs(const std::string &uid)>;
// A step begins.
using TellStep = std::function<void(const std::string &step)>;

// One attempt, to its end, at a chip that can be thrown away. Refusal of makeImage goes through.
Outcome attemptAlone(const Json &order, const MakeImage &makeImage, const TellStep &tell);

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
    Outcome run(const TellStep &tell) const;
};
