// Everything that a line can do to a session of the console, once at each byte of it, in each direction; and the power
// of the chip goes in and after each step of erasing and programming.

#include <algorithm>
#include <memory>

#include "foundation/Result.h"
#include "tests/faults/Check.h"
#include "tests/faults/Failures.h"

namespace faults {
namespace {

// What goes over a link one by one. A CAN bus repeats a damaged frame, and USB a damaged packet, by itself.
enum Unit : unsigned { byte = 1, frame = 2, transfer = 4, any = byte | frame | transfer };
constexpr Unit unitOf[linkCount] = {byte, transfer, byte, frame, byte, byte};

struct Harm {
    damage::Kind kind;
    const char *name;
    unsigned befalls;
    bool changesBytes; // so that a check byte may not see it
};
constexpr Harm harms[] = {
    {damage::Kind::bit, "flipped", byte, true},
    {damage::Kind::lost, "lost", any, false},
    {damage::Kind::doubled, "doubled", byte | frame, true},
    {damage::Kind::late, "late", any, false},
    {damage::Kind::silent, "silence from here on", any, false},
    {damage::Kind::gone, "port gone", any, false},
};

struct Side {
    Units units;
    const char *name;
    std::vector<std::size_t> Fate::*places;
};
const Side sides[] = {{Units::toChip, "to chip", &Fate::toChip}, {Units::toHost, "to host", &Fate::toHost}};

struct Steps {
    Units units;
    const char *name;
    sim::CellKind cells;
};
constexpr Steps steps[] = {{Units::flashSteps, "programming", sim::CellKind::flash},
                           {Units::optionSteps, "option bytes", sim::CellKind::options},
                           {Units::erasingSteps, "erasing", sim::CellKind::erasing}};

constexpr unsigned mostAnswers = 3; // of one command that the chip can refuse

struct Rig {
    Machine machine;
    Good good;
};

std::size_t countOf(const Good &good, Units units) {
    return good.ending.counts[static_cast<std::size_t>(units)];
}

// Whether nobody looks at the cells after they were written.
bool isUnverified(const Good &good) {
    const auto has = [&good](const char *word) { return good.words.find(word) != std::string::npos; };
    return has(" -d ") && !has(" --v");
}

bool hasFailed(const Call &call) {
    if (call.function == Function::Interface_is_Open || call.function == Function::Interface_Close)
        return false;
    if (isOfFiles(call.function) && call.function != Function::FILES_GetMemoryMapping)
        return CResult::Convert(call.status) != CResult::SUCCESS;
    return call.status != 0;
}

// The actions that end with that status, as one.
Action actionOf(const Good &good, int status) {
    Action all;
    for (const Action &action : good.actions) {
        if (std::find(action.statuses.begin(), action.statuses.end(), status) == action.statuses.end())
            continue;
        all.words = action.words;
        all.statuses = action.statuses;
        all.texts.insert(all.texts.end(), action.texts.begin(), action.texts.end());
    }
    return all;
}

// The status and the text are those of the call that failed last, and nothing follows it that changes a chip.
void checkFailure(const Good &good, const Ending &ending, Complaints &complaints) {
    const auto last = std::find_if(ending.calls.rbegin(), ending.calls.rend(), hasFailed);
    std::vector<std::string> texts;
    if (last == ending.calls.rend()) {
        texts.emplace_back(Info_CMDNotAllowed); // no check byte guards the list of commands of a chip
    } else {
        texts = textsOf(last->function, last->status);
        for (auto call = ending.calls.rbegin(); call != last; ++call)
            if (changesChip(call->function))
                complaints.push_back(std::string("a call of ") + nameOf(call->function) + " follows one of " +
                                     nameOf(last->function));
    }
    checkReport(actionOf(good, ending.status), texts, ending, complaints);
}

void runCase(Machine &machine, const Good &good, const Fate &fate, Looks looks, Row &row, Complaints &complaints) {
    const CommandLine &line = good.line;
    const Ending ending = machine.run(line.chip, line.link, good.words, good.start, good.files, fate);
    checkState(good, ending, complaints, looks);
    if (ending.status == 0) {
        const bool isLookedAt = looks == Looks::yes && !ending.becameAnother;
        ++(hasDone(good, ending) || isLookedAt ? row.well : row.unseen);
        return;
    }
    ++row.reported;
    checkFailure(good, ending, complaints);
    if (complaints.empty())
        checkSecondRun(machine, good, ending, row, complaints);
}

// Cases that differ in their number alone.
struct Series {
    const char *what;
    std::size_t count;
    std::function<Fate(std::size_t number)> fate;
    std::function<std::string(std::size_t number)> where; // behind `what`, it names the case
    Looks looks = Looks::yes;
};

Series harmedAt(const Good &good, const Harm &harm, const Side &side, unsigned seed) {
    const auto fate = [&harm, &side, seed](std::size_t at) {
        Fate made;
        made.kind = harm.kind;
        made.*side.places = {at};
        made.seed = seed + static_cast<std::uint32_t>(at);
        return made;
    };
    const auto where = [&side](std::size_t at) { return std::string(" ") + side.name + " " + std::to_string(at); };
    const Looks looks = harm.changesBytes && isUnverified(good) ? Looks::no : Looks::yes;
    return {harm.name, countOf(good, side.units), fate, where, looks};
}

Series cutAt(const Good &good, const Steps &row) {
    const std::size_t first = row.cells == sim::CellKind::erasing ? 1 : 0;
    const auto fate = [&row, first](std::size_t number) {
        Fate made;
        made.ofChip.emplace();
        made.ofChip->kind = sim::FaultKind::powerCut;
        made.ofChip->cells = row.cells;
        made.ofChip->at = first + number;
        return made;
    };
    const auto where = [&row, first](std::size_t number) {
        return std::string(" ") + row.name + " " + std::to_string(first + number);
    };
    const std::size_t count = countOf(good, row.units);
    return {"power cut", count == 0 ? 0 : count + 1 - first, fate, where};
}

Series refused(const Good &good) {
    const auto fate = [](std::size_t number) {
        Fate made;
        made.ofChip.emplace();
        made.ofChip->at = number / mostAnswers + 1;
        made.ofChip->value = static_cast<unsigned>(number % mostAnswers);
        return made;
    };
    const auto where = [](std::size_t number) {
        return " " + std::to_string(number / mostAnswers + 1) + " answer " + std::to_string(number % mostAnswers);
    };
    return {"refused", countOf(good, Units::commands) * mostAnswers, fate, where};
}

std::vector<Series> allOf(const Good &good, unsigned seed) {
    std::vector<Series> all;
    for (const Harm &harm : harms)
        for (const Side &side : sides)
            if ((harm.befalls & unitOf[good.line.link]) != 0)
                all.push_back(harmedAt(good, harm, side, seed));
    for (const Steps &row : steps)
        all.push_back(cutAt(good, row));
    all.push_back(refused(good));
    return all;
}

Case caseOf(const std::shared_ptr<Rig> &rig, const Series &series, std::size_t number) {
    const auto run = [rig, fate = series.fate(number), looks = series.looks](Row &row, Complaints &complaints) {
        runCase(rig->machine, rig->good, fate, looks, row, complaints);
    };
    return {series.what + series.where(number), run, std::string(links[rig->good.line.link].name) + ", " + series.what};
}

// All cases of one command line.
Cases casesOf(const CommandLine &line, unsigned seed) {
    const auto rig = std::make_shared<Rig>();
    rig->good = runWell(rig->machine, line);
    const std::vector<Series> all = allOf(rig->good, seed);
    std::size_t count = 0;
    for (const Series &series : all)
        count += series.count;
    return {count, [rig, all](std::size_t number) {
                auto series = all.begin();
                for (; number >= series->count; ++series)
                    number -= series->count;
                return caseOf(rig, *series, number);
            }};
}

std::vector<Cell> cells(unsigned seed) {
    std::vector<Cell> all;
    for (const auto *lines : {&commandLines, &adapterLines})
        for (const CommandLine &line : *lines)
            all.push_back({nameOf(line), [line, seed] { return casesOf(line, seed); }});
    return all;
}

} // namespace
} // namespace faults

int main(int count, char **words) {
    const faults::Wish wish = faults::readWords(count, words);
    return faults::runCampaign(wish, words[0], faults::cells(wish.seed));
}
