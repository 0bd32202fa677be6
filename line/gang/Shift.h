#pragma once

#include <functional>
#include <string>

#include "line/job/Job.h"
#include "line/plan/Plan.h"
#include "line/plan/UnitImage.h"
#include "line/register/Register.h"
#include "line/station/Station.h"

// What all nests have in common while a line works.
struct Shift {
    const Job &job;
    const Plan &plan;
    const Runs &image;
    const Station &station;
    const std::string order; // empty for none
    Register &units;

    // An attempt was found that its owner did not live to close.
    std::function<void(const Orphan &)> orphan = {};
    // A nest has met a chip whose identifier another one has met.
    std::function<void(const std::string &uid)> sameId = {};

    // On what terms chips are made.
    Terms terms() const;
    // Whether records are to be delivered.
    bool delivers() const { return station.after.has_value(); }
};
