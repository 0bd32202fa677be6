#include "line/program/Work.h"

#include <iostream>
#include <memory>

#include "line/approval/Approval.h"
#include "line/program/Reading.h"
#include "line/rehearsal/Rehearsal.h"
#include "programs/Status.h"
#include "programs/Text.h"

namespace {

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

int check(const std::string &job, bool planAlone, const Asked &asked) {
    const Reading reading(job, asked.station);
    if (planAlone)
        std::cout << reading.plan.text;
    else
        print("check", reading, asked.json);
    return allDone;
}

int approve(const std::string &job, const std::string &hash, const Asked &asked) {
    const Reading reading(job, asked.station);
    approve(reading.station.approved, reading.plan, hash);
    if (asked.json)
        print("approve", reading, true);
    else
        std::cout << "approved " << reading.plan.hash << " in " << reading.station.approved << '\n';
    return allDone;
}

int rehearse(const std::string &job, const std::string &order, const std::string &keep, const Asked &asked) {
    const Reading reading(job, asked.station);
    const Rehearsal rehearsal{reading.job, reading.plan, reading.image, reading.station, order, keep};
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

// A word of a verb, kept until the verb runs.
std::shared_ptr<std::string> wordOf(CLI::App &words, const char *name, const char *what, bool required) {
    auto text = std::make_shared<std::string>();
    words.add_option(name, *text, what)->required(required);
    return text;
}

std::shared_ptr<std::string> jobOf(CLI::App &words) {
    return wordOf(words, "JOB", "job file", true);
}

} // namespace

Work declareCheck(CLI::App &words) {
    const auto job = jobOf(words);
    const auto planAlone = std::make_shared<bool>();
    words.add_flag("--plan", *planAlone, "the text of the plan alone");
    return [=](const Asked &asked) { return check(*job, *planAlone, asked); };
}

Work declareApprove(CLI::App &words) {
    const auto job = jobOf(words);
    const auto hash = wordOf(words, "HASH", "the hash of the plan, as check tells it", true);
    return [=](const Asked &asked) { return approve(*job, *hash, asked); };
}

Work declareRehearse(CLI::App &words) {
    const auto job = jobOf(words);
    const auto order = wordOf(words, "--order", "the order that the unit is for", false);
    const auto keep = wordOf(words, "--keep", "keep the chip's memory in this file, as zv32-sim --state does", false);
    return [=](const Asked &asked) { return rehearse(*job, *order, *keep, asked); };
}
