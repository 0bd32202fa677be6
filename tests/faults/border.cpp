// Every call that the console makes to its two libraries goes wrong once, in every way.

#include <algorithm>
#include <memory>
#include <optional>

#include "foundation/Result.h"
#include "tests/faults/Check.h"

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

// What changes a chip, or lets it run its program.
bool changesChip(Function function) {
    constexpr Function changing[] = {
        Function::ZVBL_GO,
        Function::ZVBL_ResetMCU,
        Function::ZVBL_DNLOAD,
        Function::ZVBL_ERASE,
        Function::ZVBL_BLOCK_ERASE,
        Function::ZVBL_SPIMREMAP,
        Function::ZVBL_EnableBank3,
        Function::TARGET_SetUserSystemData,
        Function::ZVBL_ACCESS_PROTECT,
        Function::ZVBL_ACCESS_PROTECT_LEVEL,
        Function::ZVBL_ACCESS_PERM_UNPROTECT,
        Function::ZVBL_ERASEPROGRAM_PROTECT,
        Function::ZVBL_ERASEPROGRAM_PERM_UNPROTECT,
        Function::FILES_ImageToFile,
    };
    return std::find(std::begin(changing), std::end(changing), function) != std::end(changing);
}

// A text that is not the one of the status.
struct OtherText {
    Function function;
    std::optional<unsigned> status; // none: whatever it answers
    const char *text;
};
constexpr OtherText otherTexts[] = {
    {Function::ZVBL_VERIFY, 0x13, Info_Program_VerifyDataNotMatching},
    {Function::TARGET_GetUserSystemData, 0x13, Info_AccessProtection},
    {Function::TARGET_GetUserSystemData, 0x14, Info_AccessProtection},
    {Function::ZVBL_GetZVDeviceList, std::nullopt, Info_Com_NotOpen}, // after a reset nothing was opened again
    {Function::FILES_GetMemoryMapping, std::nullopt, Info_Program_InputParamsError},
    {Function::FILES_GetMemoryMapping, std::nullopt, Info_Files_BADPARAMETER},
    {Function::FILES_FilterImageForOperation, std::nullopt, Info_UnknownError},
};

// What fails is what needs it later: the sectors of a chip without its map, an image that was not cut at sectors.
bool failsLater(Function function) {
    return function == Function::FILES_GetMemoryMapping || function == Function::FILES_FilterImageForOperation;
}

std::vector<std::string> textsOf(Function function, unsigned status) {
    const int code = isOfFiles(function) ? CResult::Convert(status) : CResult::Convert(static_cast<int>(status));
    std::vector<std::string> texts = {CResult::GetInfoStringName(code)};
    for (const OtherText &other : otherTexts)
        if (other.function == function && other.status.value_or(status) == status)
            texts.emplace_back(other.text);
    return texts;
}

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

std::vector<Case> casesOf(const CommandLine &line) {
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
    return cases;
}

std::vector<Cell> cells() {
    std::vector<Cell> all;
    for (const CommandLine &line : commandLines)
        all.push_back({std::string(links[line.link].name) + ", " + line.chip + ": " + line.words,
                       [line] { return casesOf(line); }});
    return all;
}

} // namespace
} // namespace faults

int main(int count, char **words) {
    return faults::runCampaign(faults::readWords(count, words), words[0], faults::cells());
}
