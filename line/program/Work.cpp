#include "line/program/Work.h"

#include <iostream>

#include "line/approval/Approval.h"
#include "line/job/Job.h"
#include "line/plan/Plan.h"
#include "line/rehearsal/Rehearsal.h"
#include "line/station/Station.h"
#include "programs/Status.h"
#include "programs/Text.h"

namespace {

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
    if (!needsApproval(reading.station, reading.plan))
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

Json recordOf(const Rehearsal &rehearsal, const Outcome &outcome, int status) {
    Json record = {{"verb", "rehearse"}, {"status", status}, {"result", outcome.passed() ? "pass" : "fail"}};
    record["cause"] = outcome.passed() ? Json() : Json(outcome.cause);
    record["text"] = outcome.passed() ? Json() : Json(outcome.text);
    record["code"] = outcome.code;
    for (const char *name : {"chip", "pid", "bootloader", "uid"})
        record[name] = outcome.identified.is_object() ? outcome.identified.at(name) : Json();
    const bool numbered = !rehearsal.series().empty();
    record["series"] = numbered ? Json(rehearsal.series()) : Json();
    record["number"] = numbered ? Json(rehearsal.number()) : Json();
    record["plan"] = rehearsal.plan.hash;
    record["ms"] = outcome.milliseconds;
    return record;
}

void print(const Rehearsal &rehearsal, const Outcome &outcome) {
    if (!outcome.passed()) {
        std::cout << "FAIL " << outcome.cause << ": " << harmless(outcome.text) << '\n';
        return;
    }
    std::cout << "PASS";
    if (!rehearsal.series().empty())
        std::cout << " number " << rehearsal.number();
    std::cout << " uid " << outcome.identified.at("uid").get<std::string>() << '\n';
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

int rehearse(const Asked &asked) {
    const Reading reading(asked);
    const Rehearsal rehearsal{reading.job, reading.plan, reading.image, reading.station, asked.order, asked.keep};
    const auto tell = [&](const std::string &step) {
        if (!asked.json)
            std::cout << step << std::endl;
    };
    const Outcome outcome = rehearsal.run(tell);
    const int status = outcome.passed() ? allDone : notMade;
    if (asked.json)
        std::cout << recordOf(rehearsal, outcome, status).dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    else
        print(rehearsal, outcome);
    return status;
}
