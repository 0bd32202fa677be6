#pragma once

#include <string>

#include "line/job/Job.h"
#include "line/plan/Chip.h"
#include "line/plan/Plan.h"
#include "line/plan/UnitImage.h"
#include "line/station/Station.h"

// All that is read before anything is done.
struct Reading {
    // The job file, and the station file, empty for that of the system. Throws Refusal, with notAcceptable.
    Reading(const std::string &jobFile, const std::string &stationFile);

    const Station station;
    const Job job;
    const Chip chip;
    const Runs image;
    const Plan plan;
};
