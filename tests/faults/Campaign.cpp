#include "tests/faults/Campaign.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <numeric>
#include <random>
#include <sstream>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {
namespace {

// The rows that are done, in a file to which each process appends.
class Done {
public:
    explicit Done(const Wish &wish)
        : m_path(wish.done), m_isKept(!wish.count && wish.cell.empty() && wish.oneCase.empty()) {
        const auto made = std::filesystem::last_write_time("/proc/self/exe").time_since_epoch().count();
        m_head = "cells done by the program of " + std::to_string(made) + ", seed " + std::to_string(wish.seed);
        if (!m_isKept)
            m_path = "/tmp/campaign-" + std::to_string(getpid());
        std::string head;
        if (std::ifstream file(m_path); !m_isKept || !std::getline(file, head) || head != m_head)
            std::ofstream(m_path) << m_head << "\n";
    }
    ~Done() {
        if (!m_isKept)
            forget();
    }
    Done(const Done &) = delete;
    Done &operator=(const Done &) = delete;

    void add(const std::string &cell, const Row &row) const {
        std::ostringstream line;
        line << row.cases << " " << row.well << " " << row.reported << " " << row.again << " " << row.toldWhy << " "
             << row.findings << " " << cell << "\n";
        std::ofstream(m_path, std::ios::app) << line.str(); // one write, so processes don't mix
    }

    // The whole is done: the next one begins anew.
    void forget() const { unlink(m_path.c_str()); }

    std::map<std::string, Row> rows() const {
        std::map<std::string, Row> rows;
        std::ifstream file(m_path);
        std::string line;
        std::getline(file, line);
        while (std::getline(file, line)) {
            std::istringstream words(line);
            Row row;
            std::string name;
            words >> row.cases >> row.well >> row.reported >> row.again >> row.toldWhy >> row.findings >> std::ws;
            if (words && std::getline(words, name))
                rows[name] = row;
        }
        return rows;
    }

private:
    std::string m_path;
    std::string m_head;
    bool m_isKept;
};

std::vector<std::size_t> chosen(const Wish &wish, const std::string &cell, std::size_t cases) {
    std::vector<std::size_t> all(cases);
    std::iota(all.begin(), all.end(), std::size_t{0});
    if (!wish.count || *wish.count >= cases || !wish.oneCase.empty())
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

Row runCell(const Wish &wish, const char *program, const Cell &cell) {
    Row row;
    std::vector<Case> cases;
    try {
        cases = cell.cases();
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "%s --cell \"%s\": without a fault: %s\n", program, cell.name.c_str(), failure.what());
        ++row.findings;
    }
    for (const std::size_t number : chosen(wish, cell.name, cases.size())) {
        const Case &one = cases[number];
        if (!wish.oneCase.empty() && one.name != wish.oneCase)
            continue;
        std::vector<std::string> complaints;
        ++row.cases;
        one.run(row, complaints);
        row.findings += complaints.empty() ? 0 : 1;
        for (const std::string &complaint : complaints)
            std::fprintf(stderr, "%s --cell \"%s\" --case \"%s\": %s\n", program, cell.name.c_str(), one.name.c_str(),
                         complaint.c_str());
    }
    return row;
}

void runShare(const Wish &wish, const char *program, const std::vector<const Cell *> &cells, unsigned share,
              const Done &done) {
    for (std::size_t i = share; i < cells.size(); i += wish.jobs)
        done.add(cells[i]->name, runCell(wish, program, *cells[i]));
}

bool runAll(const Wish &wish, const char *program, const std::vector<const Cell *> &cells, const Done &done) {
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

void printRow(const std::string &name, const Row &row) {
    std::printf("| %s | %u | %u | %u | %u | %u | %u |\n", name.c_str(), row.cases, row.well, row.reported, row.again,
                row.toldWhy, row.findings);
}

double secondsOfChildren() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval &time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

Row printTable(const std::vector<const Cell *> &cells, const std::map<std::string, Row> &rows) {
    Row sum;
    std::printf("| | cases | ended well | reported | second run well | second run tells why not | findings |\n"
                "|---|---|---|---|---|---|---|\n");
    for (const Cell *cell : cells) {
        const auto found = rows.find(cell->name);
        const Row row = found == rows.end() ? Row() : found->second;
        printRow(cell->name, row);
        sum.cases += row.cases;
        sum.well += row.well;
        sum.reported += row.reported;
        sum.again += row.again;
        sum.toldWhy += row.toldWhy;
        sum.findings += row.findings;
    }
    printRow("all", sum);
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
                     "%s?\nusage: %s [--count N] [--seed N] [--jobs N] [--done FILE] [--cell NAME] [--case NAME]\n",
                     wish.trouble, program);
        return 2;
    }
    const Done done(wish);
    const std::map<std::string, Row> before = done.rows();
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
    const Row sum = printTable(wanted, done.rows());
    std::printf("\nSeed %u; %.0f s of processor time%s.\n", wish.seed, secondsOfChildren(),
                before.empty() ? "" : ", without the cells that were done before");
    if (orderly)
        done.forget();
    return !orderly || sum.cases == 0 || sum.findings > 0 ? 1 : 0;
}

} // namespace faults
