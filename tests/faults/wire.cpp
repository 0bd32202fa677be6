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
constexpr Unit unitOf[linkCount] = {byte, transfer, byte, frame, byte};

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
        ++(hasDone(good, ending) || looks == Looks::yes ? row.well : row.unseen);
        return;
    }
    ++row.reported;
    checkFailure(good, ending, complaints);
    if (complaints.empty())
        checkSecondRun(machine, good, ending, row, complaints);
}

// All cases of one command line.
class Cases {
public:
    Cases(std::shared_ptr<Rig> rig, unsigned seed) : m_rig(std::move(rig)), m_seed(seed) {}

    std::vector<Case> all() {
        for (const Harm &harm : harms)
            if ((harm.befalls & unitOf[good().line.link]) != 0)
                addHarm(harm);
        for (const Steps &row : steps)
            addCuts(row);
        addRefusals();
        return std::move(m_cases);
    }

private:
    const Good &good() const { return m_rig->good; }

    void add(const std::string &what, const std::string &where, const Fate &fate, Looks looks = Looks::yes) {
        m_cases.push_back({what + where,
                           [rig = m_rig, fate, looks](Row &row, Complaints &complaints) {
                               runCase(rig->machine, rig->good, fate, looks, row, complaints);
                           },
                           std::string(links[good().line.link].name) + ", " + what});
    }

    void addHarm(const Harm &harm) {
        const Looks looks = harm.changesBytes && isUnverified(good()) ? Looks::no : Looks::yes;
        for (const Side &side : sides)
            for (std::size_t at = 0; at < countOf(good(), side.units); ++at) {
                Fate fate;
                fate.kind = harm.kind;
                fate.*side.places = {at};
                fate.seed = m_seed + static_cast<std::uint32_t>(at);
                add(harm.name, std::string(" ") + side.name + " " + std::to_string(at), fate, looks);
            }
    }

    void addCuts(const Steps &row) {
        const std::size_t count = countOf(good(), row.units);
        for (std::size_t at = row.cells == sim::CellKind::erasing ? 1 : 0; count > 0 && at <= count; ++at) {
            Fate fate;
            fate.ofChip.emplace();
            fate.ofChip->kind = sim::FaultKind::powerCut;
            fate.ofChip->cells = row.cells;
            fate.ofChip->at = at;
            add("power cut", std::string(" ") + row.name + " " + std::to_string(at), fate);
        }
    }

    void addRefusals() {
        for (std::size_t at = 1; at <= countOf(good(), Units::commands); ++at)
            for (unsigned answer = 0; answer < mostAnswers; ++answer) {
                Fate fate;
                fate.ofChip.emplace();
                fate.ofChip->at = at;
                fate.ofChip->value = answer;
                add("refused", " " + std::to_string(at) + " answer " + std::to_string(answer), fate);
            }
    }

    std::shared_ptr<Rig> m_rig;
    unsigned m_seed;
    std::vector<Case> m_cases;
};

std::vector<Case> casesOf(const CommandLine &line, unsigned seed) {
    const auto rig = std::make_shared<Rig>();
    rig->good = runWell(rig->machine, line);
    return Cases(rig, seed).all();
}

std::vector<Cell> cells(unsigned seed) {
    std::vector<Cell> all;
    for (const CommandLine &line : commandLines)
        all.push_back({nameOf(line), [line, seed] { return casesOf(line, seed); }});
    return all;
}

} // namespace
} // namespace faults

int main(int count, char **words) {
    const faults::Wish wish = faults::readWords(count, words);
    return faults::runCampaign(wish, words[0], faults::cells(wish.seed));
}
