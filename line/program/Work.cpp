#include "line/program/Work.h"

#include <iostream>
#include <memory>

#include "line/approval/Approval.h"
#include "line/plan/UnitBytes.h"
#include "line/program/Reading.h"
#include "line/rehearsal/Rehearsal.h"
#include "programs/Json.h"
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
    std::cout << printed(whole, 2) << '\n';
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
    for (const char *name : {"verified", "options", "ms"})
        record[name] = outcome.end.is_object() ? outcome.end.at(name) : Json();
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

struct RehearsalWords {
    std::string job;
    std::string order;
    std::string keep;
    std::vector<std::string> supply;
};

// Of NAME=VALUE words.
std::map<std::string, std::string> supplyOf(const std::vector<std::string> &words) {
    std::map<std::string, std::string> supply;
    for (const std::string &word : words) {
        const std::size_t sign = word.find('=');
        if (sign == std::string::npos)
            throw Refusal(badWords, "--supply: \"" + word + "\" is not NAME=VALUE");
        supply[word.substr(0, sign)] = word.substr(sign + 1);
    }
    return supply;
}

int rehearse(const RehearsalWords &words, const Asked &asked) {
    const std::map<std::string, std::string> supply = supplyOf(words.supply);
    const Reading reading(words.job, asked.station);
    checkOrder(reading.job.units, words.order);
    const Rehearsal rehearsal{reading.job, reading.plan, reading.image, reading.station,
                              words.order, supply,       words.keep};
    const auto tell = [&](const std::string &step) {
        if (!asked.json)
            std::cout << step << std::endl;
    };
    const Outcome outcome = rehearsal.run(tell);
    const int status = outcome.passed() ? allDone : notMade;
    if (asked.json)
        std::cout << printed(recordOf(rehearsal, outcome, status), 2) << '\n';
    else
        print(rehearsal, outcome);
    return status;
}

// A word of a verb, kept until the verb runs.
std::shared_ptr<std::string> wordOf(CLI::App &words, const char *name, const char *what) {
    auto text = std::make_shared<std::string>();
    words.add_option(name, *text, what)->required();
    return text;
}

std::shared_ptr<std::string> jobOf(CLI::App &words) {
    return wordOf(words, "JOB", "job file");
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
    const auto hash = wordOf(words, "HASH", "the hash of the plan, as check tells it");
    return [=](const Asked &asked) { return approve(*job, *hash, asked); };
}

Work declareRehearse(CLI::App &words) {
    const auto given = std::make_shared<RehearsalWords>();
    words.add_option("JOB", given->job, "job file")->required();
    words.add_option("--order", given->order, "the order that the unit is for");
    words.add_option("--supply", given->supply, "NAME=VALUE, in the place of what the hook before it would supply")
        ->allow_extra_args(false);
    words.add_option("--keep", given->keep, "keep the chip's memory in this file, as zv32-sim --state does");
    return [given](const Asked &asked) { return rehearse(*given, asked); };
}
