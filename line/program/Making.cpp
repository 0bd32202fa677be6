#include "line/program/Making.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "line/approval/Approval.h"
#include "line/gang/Gang.h"
#include "line/hooks/HookFile.h"
#include "line/plan/UnitBytes.h"
#include "line/program/Reading.h"
#include "programs/Json.h"
#include "programs/Status.h"

namespace {

// A view for a program that reads the records.
class SilentView : public View {
public:
    void show(const State & /*state*/) override {}
    std::vector<int> descriptors() const override { return {}; }
    Clock::time_point next() const override { return Clock::time_point::max(); }
    std::vector<std::size_t> work() override { return {}; }
};

struct Wish {
    std::string job;
    std::string order;
    std::vector<std::string> nests;
    std::string start = "plug";
};

std::vector<Nest> nestsOf(const Station &station, const std::vector<std::string> &names) {
    std::vector<Nest> nests;
    for (const Nest &nest : station.nests)
        if (names.empty() || std::find(names.begin(), names.end(), nest.name) != names.end())
            nests.push_back(nest);
    for (const std::string &name : names)
        if (std::none_of(nests.begin(), nests.end(), [&](const Nest &nest) { return nest.name == name; }))
            throw Refusal(badWords, "--nest " + name + ": the station has no such nest");
    return nests;
}

// Whatever would end the line before its first unit.
void refuseBadStart(const Reading &reading) {
    const Station &station = reading.station;
    if (!station.read)
        throw Refusal(notAcceptable, "there is no station file: --station tells which");
    if (station.nests.empty())
        throw Refusal(notAcceptable, "the station has no [[nest]]");
    for (const auto *hook : {&station.before, &station.after})
        if (*hook)
            checkHook(**hook);
    if (needsApproval(station, reading.plan) && !isApproved(station.approved, reading.plan))
        throw Refusal(notApproved, "the plan " + reading.plan.hash + " is not approved");
}

int work(const Wish &wish, const Asked &asked, Gang::Start start) {
    const Reading reading(wish.job, asked.station);
    checkOrder(reading.job.units, wish.order);
    refuseBadStart(reading);
    const std::vector<Nest> nests = nestsOf(reading.station, wish.nests);
    Register units(reading.station.registerPath);
    units.keepPlan(reading.plan.hash, reading.job.name, reading.job.quantity, reading.plan.text);
    Shift shift{reading.job, reading.plan, reading.image, reading.station, wish.order, units};
    const auto tell = [&](const Json &record) {
        if (asked.json)
            std::cout << printed(record) << std::endl;
    };
    const std::unique_ptr<View> view =
        asked.json ? std::make_unique<SilentView>() : makeView(start == Gang::Start::key);
    const std::vector<Orphan> orphans = units.closeOrphans(shift.delivers());
    Gang gang(shift, nests, start, *view, tell);
    gang.tellOrphans(orphans);
    return gang.run();
}

std::shared_ptr<Wish> wishOf(CLI::App &words) {
    auto wish = std::make_shared<Wish>();
    words.add_option("JOB", wish->job, "job file")->required();
    words.add_option("--order", wish->order, "the order that the units are for");
    return wish;
}

} // namespace

Work declareMake(CLI::App &words) {
    const auto wish = wishOf(words);
    words.add_option("--nest", wish->nests, "only these nests, with commas between them")->delimiter(',');
    return [=](const Asked &asked) { return work(*wish, asked, Gang::Start::once); };
}

Work declareStation(CLI::App &words) {
    const auto wish = wishOf(words);
    words.add_option("--start", wish->start, "what begins a unit: plug or key")->check(CLI::IsMember({"plug", "key"}));
    return [=](const Asked &asked) {
        return work(*wish, asked, wish->start == "key" ? Gang::Start::key : Gang::Start::plug);
    };
}
