// Every call that the console makes to its two libraries goes wrong once, in every way.

#include <algorithm>
#include <memory>

#include "tests/faults/Check.h"
#include "tests/faults/Failures.h"

namespace faults {
namespace {

// Every status that the console has a text for, and one that it has not.
constexpr unsigned linkStatuses[] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x11, 0x12,
                                     0x13, 0x14, 0x15, 0x21, 0x22, 0x23, 0x99};
constexpr unsigned fileStatuses[] = {0, 2, 3, 4, 5, 6, 8, 10, 13, 14, 15};
constexpr unsigned noAnswer = 0x05;
constexpr unsigned generalError = 13;

struct WayRow {
    Way way;
    const char *name;
};
constexpr WayRow otherWays[] = {{Way::after, "after"}, {Way::half, "half"}, {Way::never, "never"}};

// What may have failed: the action that made the call, and where it fails later, any from there on.
Action actionOf(const Good &good, unsigned call) {
    std::size_t at = 0;
    while (at + 1 < good.actions.size() && call > good.lastCalls[at])
        ++at;
    Action action = good.actions[at];
    for (++at; failsLater(good.ending.calls[call - 1].function) && at < good.actions.size(); ++at) {
        const std::vector<int> &statuses = good.actions[at].statuses;
        action.statuses.insert(action.statuses.end(), statuses.begin(), statuses.end());
    }
    return action;
}

// The call that went wrong, and those behind it.
void checkCalls(const BorderPlan &plan, const Ending &ending, Complaints &complaints) {
    const Call &wrong = ending.calls[plan.call - 1];
    const bool ends = ending.status != 0 && !failsLater(wrong.function);
    for (std::size_t i = plan.call; ends && i < ending.calls.size(); ++i)
        if (changesChip(ending.calls[i].function))
            complaints.push_back(std::string("a call of ") + nameOf(ending.calls[i].function) + " follows");
    const auto isRepeated = [&wrong](const Call &call) {
        return call.function == wrong.function && call.arguments == wrong.arguments && !call.wrong;
    };
    const bool isHeard = ending.status != 0 || !changesChip(wrong.function) ||
                         std::any_of(ending.calls.begin() + plan.call, ending.calls.end(), isRepeated);
    if (!isHeard)
        complaints.push_back("nobody heard that it failed");
}

void runCase(Machine &machine, const Good &good, const BorderPlan &plan, Row &row, Complaints &complaints) {
    const CommandLine &line = good.line;
    Fate fate;
    fate.border = plan;
    const Ending ending = machine.run(line.chip, line.link, good.words, good.start, good.files, fate);
    const Function function = good.ending.calls[plan.call - 1].function;
    checkState(good, ending, complaints);
    if (ending.calls.size() < plan.call)
        return complaints.push_back("the call was not made");
    checkCalls(plan, ending, complaints);
    if (ending.status == 0) {
        ++row.well;
    } else {
        ++row.reported;
        checkReport(actionOf(good, plan.call), textsOf(function, plan.status), ending, complaints);
        if (complaints.empty())
            checkSecondRun(machine, good, ending, row, complaints);
    }
    for (std::string &complaint : complaints)
        complaint = std::string(nameOf(function)) + ": " + complaint;
}

struct Rig {
    Machine machine;
    Good good;
};

void addCase(std::vector<Case> &cases, const std::shared_ptr<Rig> &rig, const BorderPlan &plan,
             const std::string &name) {
    cases.push_back({std::to_string(plan.call) + " " + name, [rig, plan](Row &row, Complaints &complaints) {
                         runCase(rig->machine, rig->good, plan, row, complaints);
                     }});
}

Cases casesOf(const CommandLine &line) {
    const auto rig = std::make_shared<Rig>();
    rig->good = runWell(rig->machine, line);
    std::vector<Case> cases;
    for (unsigned number = 1; number <= rig->good.ending.calls.size(); ++number) {
        const Function function = rig->good.ending.calls[number - 1].function;
        const bool isOne = function == Function::Interface_is_Open || function == Function::TARGET_SetComIntType;
        if (isOne) {
            addCase(cases, rig, {number, Way::before, 0}, "before");
            continue;
        }
        for (const WayRow &row : otherWays)
            if (row.way != Way::half || hasHalf(function))
                addCase(cases, rig, {number, row.way, isOfFiles(function) ? generalError : noAnswer}, row.name);
        const auto answer = [&](unsigned status) {
            addCase(cases, rig, {number, Way::before, status}, "answers " + std::to_string(status));
        };
        if (isOfFiles(function))
            std::for_each(std::begin(fileStatuses), std::end(fileStatuses), answer);
        else
            std::for_each(std::begin(linkStatuses), std::end(linkStatuses), answer);
    }
    return {cases.size(), [cases](std::size_t number) { return cases[number]; }};
}

std::vector<Cell> cells() {
    std::vector<Cell> all;
    for (const CommandLine &line : commandLines)
        all.push_back({nameOf(line), [line] { return casesOf(line); }});
    return all;
}

} // namespace
} // namespace faults

int main(int count, char **words) {
    return faults::runCampaign(faults::readWords(count, words), words[0], faults::cells());
}
