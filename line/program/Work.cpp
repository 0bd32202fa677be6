#include "line/program/Work.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "line/approval/Approval.h"
#include "line/job/Job.h"
#include "line/plan/Plan.h"
#include "line/station/Station.h"
#include "programs/Status.h"

namespace {

using Json = nlohmann::ordered_json;

// All that is read before anything is done.
struct Reading {
    explicit Reading(const Asked &asked)
        : station(readStation(asked.station)), job(readJob(asked.job)), chip(job.chip, job.chipPlace),
          image(imageOf(job, chip)), plan(planOf(job, chip, image)) {
        for (const UnitDatum &unit : job.units)
            if (station.read && !unit.series.empty() && station.series.count(unit.series) == 0)
                unit.place.refuse("the station has no series \"" + unit.series + '"');
    }

    const Station station;
    const Job job;
    const Chip chip;
    const Runs image;
    const Plan plan;
};

std::string approvalOf(const Reading &reading) {
    if (!reading.plan.irreversible)
        return "not needed";
    return isApproved(reading.station.approved, reading.plan) ? "given" : "missing";
}

void print(const char *verb, const Reading &reading, bool asJson) {
    const std::string approval = approvalOf(reading);
    if (!asJson) {
        std::cout << reading.plan.text << "\nhash         " << reading.plan.hash << "\napproval     " << approval
                  << '\n';
        return;
    }
    const Json whole = {{"verb", verb},
                        {"status", allDone},
                        {"hash", reading.plan.hash},
                        {"approval", approval},
                        {"plan", reading.plan.text}};
    std::cout << whole.dump(2) << '\n';
}

} // namespace

int check(const Asked &asked) {
    const Reading reading(asked);
    if (asked.plan)
        std::cout << reading.plan.text;
    else
        print("check", reading, asked.json);
    return allDone;
}

int approve(const Asked &asked) {
    const Reading reading(asked);
    approve(reading.station.approved, reading.plan, asked.hash);
    if (asked.json)
        print("approve", reading, true);
    else
        std::cout << "approved " << reading.plan.hash << " in " << reading.station.approved << '\n';
    return allDone;
}
