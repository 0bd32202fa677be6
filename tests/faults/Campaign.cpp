#include "tests/faults/Campaign.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/campaign/DoneFile.h"

namespace faults {
namespace {

using Table = std::map<std::string, Row>;                      // by the names of its lines
using Cells = std::map<std::string, std::vector<std::string>>; // what the file of those that are done says of each

// The numbers of a row, in the order of the table.
struct Column {
    unsigned Row::*number;
    const char *name;
    bool isRare; // not shown where it is empty
};
constexpr Column columns[] = {
    {&Row::cases, "cases", false},
    {&Row::well, "ended well", false},
    {&Row::reported, "reported", false},
    {&Row::again, "second run well", false},
    {&Row::toldWhy, "second run tells why not", false},
    {&Row::unseen, "changed unseen", true},
    {&Row::findings, "findings", false},
};

void add(Row &sum, const Row &row) {
    for (const Column &column : columns)
        sum.*column.number += row.*column.number;
}

// What the file of those that are done says of a cell.
std::vector<std::string> linesOf(const Table &table) {
    std::vector<std::string> lines;
    for (const auto &[name, row] : table) {
        std::ostringstream line;
        for (const Column &column : columns)
            line << row.*column.number << " ";
        lines.push_back(line.str() + name);
    }
    return lines;
}

Table tableOf(const std::vector<std::string> &lines) {
    Table table;
    for (const std::string &line : lines) {
        std::istringstream words(line);
        Row row;
        for (const Column &column : columns)
            words >> row.*column.number;
        std::string name;
        if (words >> std::ws && std::getline(words, name))
            table[name] = row;
    }
    return table;
}

std::string aboutOf(const Wish &wish) {
    const auto made = std::filesystem::last_write_time("/proc/self/exe").time_since_epoch().count();
    return "cells done by the program of " + std::to_string(made) + ", seed " + std::to_string(wish.seed) +
           ", one case of " + std::to_string(wish.every);
}

// What is not about all cells and cases goes to a file of its own.
bool isWhole(const Wish &wish) {
    return !wish.count && wish.cell.empty() && wish.oneCase.empty();
}

std::string doneFileOf(const Wish &wish) {
    return isWhole(wish) ? wish.done : "/tmp/campaign-" + std::to_string(getpid());
}

std::vector<std::size_t> chosen(const Wish &wish, const std::string &cell, std::size_t cases) {
    std::vector<std::size_t> all;
    for (std::size_t number = 0; number < cases; number += wish.oneCase.empty() ? wish.every : 1)
        all.push_back(number);
    if (!wish.count || *wish.count >= all.size() || !wish.oneCase.empty())
        return all;
    std::seed_seq sequence(cell.begin(), cell.end());
    std::mt19937 random(sequence);
    random.seed(static_cast<std::uint32_t>(random() + wish.seed));
    std::vector<std::size_t> some;
    for (unsigned i = 0; i < *wish.count; ++i) {
        const std::size_t at = random() % all.size();
        some.push_back(all[at]);
        all.erase(all.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return some;
}

void runCase(const char *program, const Cell &cell, const Case &one, Row &row) {
    std::vector<std::string> complaints;
    ++row.cases;
    one.run(row, complaints);
    row.findings += complaints.empty() ? 0 : 1;
    for (const std::string &complaint : complaints)
        std::fprintf(stderr, "%s --cell \"%s\" --case \"%s\": %s\n", program, cell.name.c_str(), one.name.c_str(),
                     complaint.c_str());
}

Table runCell(const Wish &wish, const char *program, const Cell &cell) {
    Table table;
    try {
        const Cases cases = cell.cases();
        for (const std::size_t number : chosen(wish, cell.name, cases.count)) {
            const Case one = cases.at(number);
            if (wish.oneCase.empty() || one.name == wish.oneCase)
                runCase(program, cell, one, table[one.line.empty() ? cell.name : one.line]);
        }
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s --cell \"%s\": without a fault: %s\n", program, cell.name.c_str(), failure.what());
        ++table[cell.name].findings;
    }
    return table;
}

void runShare(const Wish &wish, const char *program, const std::vector<const Cell *> &cells, unsigned share,
              const campaign::DoneFile &done) {
    for (std::size_t i = share; i < cells.size(); i += wish.jobs)
        done.add(cells[i]->name, linesOf(runCell(wish, program, *cells[i])));
}

bool runAll(const Wish &wish, const char *program, const std::vector<const Cell *> &cells,
            const campaign::DoneFile &done) {
    std::vector<pid_t> children;
    for (unsigned share = 0; share < wish.jobs; ++share) {
        const pid_t child = fork();
        if (child == 0) {
            runShare(wish, program, cells, share, done);
            std::_Exit(0);
        }
        children.push_back(child);
    }
    bool orderly = true;
    for (const pid_t child : children) {
        int status = 0;
        orderly = child > 0 && waitpid(child, &status, 0) == child && status == 0 && orderly;
    }
    return orderly;
}

void printRow(const std::string &name, const Row &row, const Row &sum) {
    std::printf("| %s |", name.c_str());
    for (const Column &column : columns)
        if (!column.isRare || sum.*column.number > 0)
            std::printf(" %u |", row.*column.number);
    std::printf("\n");
}

void printHead(const Row &sum) {
    std::string rule = "|---|";
    std::printf("| |");
    for (const Column &column : columns) {
        if (column.isRare && sum.*column.number == 0)
            continue;
        std::printf(" %s |", column.name);
        rule += "---|";
    }
    std::printf("\n%s\n", rule.c_str());
}

double secondsOfChildren() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval &time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The lines of the table stand in the order of the cells that they come from.
Row printTable(const std::vector<const Cell *> &cells, const Cells &done) {
    std::vector<std::string> names;
    Table table;
    Row sum;
    for (const Cell *cell : cells) {
        const auto found = done.find(cell->name);
        for (const auto &[name, row] : found == done.end() ? Table() : tableOf(found->second)) {
            if (table.count(name) == 0)
                names.push_back(name);
            add(table[name], row);
            add(sum, row);
        }
    }
    printHead(sum);
    for (const std::string &name : names)
        printRow(name, table[name], sum);
    printRow("all", sum, sum);
    return sum;
}

} // namespace

Wish readWords(int count, char **words) {
    Wish wish;
    wish.jobs = static_cast<unsigned>(sysconf(_SC_NPROCESSORS_ONLN));
    wish.done = std::string(words[0]) + ".done";
    for (int i = 1; i < count; i += 2) {
        const std::string word = words[i];
        const char *value = i + 1 < count ? words[i + 1] : "";
        const auto number = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
        if (word == "--seed")
            wish.seed = number;
        else if (word == "--count" && number > 0)
            wish.count = number;
        else if (word == "--every" && number > 0)
            wish.every = number;
        else if (word == "--jobs" && number > 0)
            wish.jobs = number;
        else if (word == "--cell")
            wish.cell = value;
        else if (word == "--case")
            wish.oneCase = value;
        else if (word == "--done")
            wish.done = value;
        else
            wish.trouble = words[i];
    }
    return wish;
}

int runCampaign(const Wish &wish, const char *program, const std::vector<Cell> &cells) {
    if (wish.trouble) {
        std::fprintf(stderr,
                     "%s?\nusage: %s [--count N] [--every N] [--seed N] [--jobs N] [--done FILE] [--cell NAME] "
                     "[--case NAME]\n",
                     wish.trouble, program);
        return 2;
    }
    const campaign::DoneFile done(doneFileOf(wish), aboutOf(wish));
    const Cells before = done.read();
    std::vector<const Cell *> wanted;
    std::vector<const Cell *> open;
    for (const Cell &cell : cells) {
        if (cell.name.find(wish.cell) == std::string::npos)
            continue;
        wanted.push_back(&cell);
        if (before.count(cell.name) == 0)
            open.push_back(&cell);
    }
    const bool orderly = runAll(wish, program, open, done);
    const Row sum = printTable(wanted, done.read());
    const std::string share = wish.every == 1 ? "" : ", one case of " + std::to_string(wish.every);
    std::printf("\nSeed %u%s; %.0f s of processor time%s.\n", wish.seed, share.c_str(), secondsOfChildren(),
                before.empty() ? "" : ", without the cells that were done before");
    if (orderly || !isWhole(wish))
        std::filesystem::remove(done.path()); // the whole is done: the next one begins anew
    return !orderly || sum.cases == 0 || sum.findings > 0 ? 1 : 0;
}

} // namespace faults
