// The detection matrix: what comes of each job when the line does harm, of every kind, in each direction, at random
// places. It ends with 1 when a job said that all is well, and it was not.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

#include "tests/damage/Job.h"

namespace damage {
namespace {

struct Wish {
    unsigned seed = 1;
    unsigned runs = 2000;          // of each cell
    std::optional<unsigned> run;   // this one of each cell, and no other
    std::string link;              // none: all
    std::string cell;              // part of its name; none: all
    const char *trouble = nullptr; // which word it could not take
};

struct Cell {
    unsigned repaired = 0;
    unsigned reported = 0;
    unsigned lied = 0;
};

struct Total {
    unsigned long runs = 0;
    unsigned forbidden = 0; // lies of a job that must not tell any
};

constexpr unsigned mostPlaces = 4; // at which one job is harmed, in one direction

struct Way {
    const char *name;
    bool toChip;
    bool toHost;
};

// Harm on the way back can undo harm on the way there, where the same befalls the same bytes: no reading sees that.
bool mayLie(const ActionRow &action, const Way &way) {
    return action.mayLie || (action.action == Action::verifiedByReading && way.toChip && way.toHost);
}

constexpr Way ways[] = {{"chip", true, false}, {"host", false, true}, {"both", true, true}};

std::vector<std::size_t> randomPlaces(std::size_t units, std::mt19937 &random) {
    std::vector<std::size_t> places(1 + random() % mostPlaces);
    for (std::size_t &place : places)
        place = random() % units;
    std::sort(places.begin(), places.end());
    return places;
}

Harm randomHarm(Kind kind, const Way &way, const Result &clean, std::mt19937 &random) {
    Harm harm{kind, {}, {}, static_cast<std::uint32_t>(random())};
    if (way.toChip)
        harm.toChip = randomPlaces(clean.toChip, random);
    if (way.toHost)
        harm.toHost = randomPlaces(clean.toHost, random);
    return harm;
}

std::string nameOf(const LinkRow &link, const ActionRow &action, const KindRow &kind, const Way &way) {
    return std::string(link.name) + ", " + action.name + ", " + kind.name + " to " + way.name;
}

// Every run of every cell has a random sequence of its own, so that one can be run again without the others.
Cell runCell(const LinkRow &link, const ActionRow &action, const KindRow &kind, const Way &way, const Wish &wish) {
    Cell cell;
    const std::string name = nameOf(link, action, kind, way);
    if (name.find(wish.cell) == std::string::npos)
        return cell;
    const Result clean = runJob(link, action.action, {}, wish.seed);
    if (clean.outcome != Outcome::repaired) {
        std::fprintf(stderr, "%s: fails on a line that does no harm, status %d\n", name.c_str(), clean.status);
        std::exit(1);
    }
    for (unsigned run = 0; run < wish.runs; ++run) {
        if (wish.run && run != *wish.run)
            continue;
        std::seed_seq sequence{wish.seed,           unsigned(link.type),   unsigned(action.action),
                               unsigned(kind.kind), unsigned(&way - ways), run};
        std::mt19937 random(sequence);
        const Harm harm = randomHarm(kind.kind, way, clean, random);
        const Result result = runJob(link, action.action, harm, random());
        cell.repaired += result.outcome == Outcome::repaired;
        cell.reported += result.outcome == Outcome::reported;
        cell.lied += result.outcome == Outcome::lied;
        if (result.outcome == Outcome::lied && !mayLie(action, way))
            std::fprintf(stderr, "lied: --cell \"%s\" --run %u\n", name.c_str(), run);
    }
    return cell;
}

void runRow(const LinkRow &link, const KindRow &kind, const Way &way, const Wish &wish, Total &total) {
    std::string row;
    unsigned long runs = 0;
    for (const ActionRow &action : actions) {
        const Cell cell = runCell(link, action, kind, way, wish);
        const std::string lied = std::to_string(cell.lied);
        row += " " + std::to_string(cell.repaired) + " / " + std::to_string(cell.reported) + " / " +
               (cell.lied ? "**" + lied + "**" : lied) + " |";
        runs += cell.repaired + cell.reported + cell.lied;
        total.forbidden += mayLie(action, way) ? 0 : cell.lied;
    }
    total.runs += runs;
    if (runs > 0)
        std::printf("| %s | %s | %s |%s\n", link.name, kind.name, way.name, row.c_str());
    std::fflush(stdout);
}

void runLink(const LinkRow &link, const Wish &wish, Total &total) {
    for (const KindRow &kind : kinds)
        for (const Way &way : ways)
            if (kind.ofFrames || !link.frames)
                runRow(link, kind, way, wish, total);
}

void printHead() {
    std::printf("| link | damage | on its way to |");
    for (const ActionRow &action : actions)
        std::printf(" %s |", action.name);
    std::printf("\n|---|---|---|---|---|---|---|\n");
}

Wish readWords(int count, char **words) {
    Wish wish;
    for (int i = 1; i < count; i += 2) {
        const std::string word = words[i];
        const char *value = i + 1 < count ? words[i + 1] : "";
        if (word == "--seed")
            wish.seed = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
        else if (word == "--runs" && std::atoi(value) > 0)
            wish.runs = static_cast<unsigned>(std::atoi(value));
        else if (word == "--run")
            wish.run = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
        else if (word == "--link")
            wish.link = value;
        else if (word == "--cell")
            wish.cell = value;
        else
            wish.trouble = words[i];
    }
    return wish;
}

int campaign(const Wish &wish) {
    Total total;
    const std::clock_t begin = std::clock();
    printHead();
    for (const LinkRow &link : links)
        if (wish.link.empty() || wish.link == link.name)
            runLink(link, wish, total);
    std::printf("\nEach cell: repaired / reported / lied, of %u runs; seed %u; %lu runs in %.0f s of processor time. "
                "Lies of jobs that must tell none: %u.\n",
                wish.runs, wish.seed, total.runs, double(std::clock() - begin) / CLOCKS_PER_SEC, total.forbidden);
    return total.runs == 0 || total.forbidden > 0 ? 1 : 0;
}

} // namespace
} // namespace damage

int main(int count, char **words) {
    const damage::Wish wish = damage::readWords(count, words);
    if (wish.trouble) {
        std::fprintf(stderr,
                     "%s?\nusage: damage-matrix [--runs N] [--seed N] [--link NAME] [--cell NAME] [--run NUMBER]\n",
                     wish.trouble);
        return 2;
    }
    return damage::campaign(wish);
}
