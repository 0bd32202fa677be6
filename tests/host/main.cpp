// The console with each of its system calls failing in turn, signals and holds in the place of each, and little of
// what a machine has. It ends with 1 when a run was not right and did not say so, or left a file half.

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/campaign/DoneFile.h"
#include "tests/host/Cells.h"
#include "tests/host/Verdict.h"

namespace host {
namespace {

constexpr int skipped = 77;

struct Wish {
    unsigned seed = 1;
    unsigned spread = 0; // so many cases at random; 0: all
    int workers = 0;
    std::string cell; // part of its name
    int only = -1;    // the case of each cell
    std::string done;
    const char *trouble = nullptr; // which word it could not take
};

struct Cell {
    const Job *job;
    const Sweep *sweep;
    std::string name() const { return std::string(job->name) + ", " + sweep->name; }
};

// The place and the good run of a job, made when they are asked for.
class Bench {
public:
    Place &place(const Job &job) {
        std::unique_ptr<Place> &place = m_places[job.end];
        if (!place)
            place = std::make_unique<Place>(job.end);
        return *place;
    }
    const Good &good(const Job &job) {
        const auto found = m_good.find(&job);
        return found != m_good.end() ? found->second : m_good[&job] = goodRun(place(job), job);
    }

private:
    std::map<End, std::unique_ptr<Place>> m_places;
    std::map<const Job *, Good> m_good;
};

std::vector<Cell> cellsOf(const Wish &wish) {
    std::vector<Cell> cells;
    for (const Job &job : jobs)
        for (const Sweep &sweep : sweeps())
            if (sweep.concerns(job) && Cell{&job, &sweep}.name().find(wish.cell) != std::string::npos)
                cells.push_back({&job, &sweep});
    return cells;
}

void runCase(Bench &bench, const Cell &cell, const std::vector<Case> &cases, std::size_t number, Count &count) {
    const Good &good = bench.good(*cell.job);
    const Verdict verdict = judge(bench.place(*cell.job), *cell.job, cases[number], good);
    if (!verdict.reached)
        return;
    ++count.cases;
    count.right += verdict.right ? 1 : 0;
    count.left += verdict.left ? 1 : 0;
    if (verdict.lie.empty())
        return;
    ++count.lies;
    std::fprintf(stderr, "--cell \"%s\" --case %zu: %s\n", cell.name().c_str(), number, verdict.lie.c_str());
    if (cell.job->end == End::chip)
        bench.place(*cell.job).newChip();
}

// Of this process and of what it ran.
double processorTime() {
    double seconds = 0;
    for (const auto who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage used;
        getrusage(who, &used);
        for (const timeval &time : {used.ru_utime, used.ru_stime})
            seconds += double(time.tv_sec) + double(time.tv_usec) / 1e6;
    }
    return seconds;
}

Count runCell(Bench &bench, const Cell &cell, int only) {
    Count count;
    const double before = processorTime();
    const std::vector<Case> cases = cell.sweep->cases(*cell.sweep, bench.good(*cell.job).run);
    for (std::size_t number = 0; number < cases.size(); ++number)
        if (only < 0 || number == static_cast<std::size_t>(only))
            runCase(bench, cell, cases, number, count);
    count.seconds = processorTime() - before;
    return count;
}

// Each worker takes the next cell that nobody has taken.
void work(const std::vector<Cell> &cells, const campaign::DoneFile &done, int only, std::atomic<std::size_t> &next) {
    Bench bench;
    const auto before = done.read();
    for (std::size_t index; (index = next++) < cells.size();)
        if (before.count(cells[index].name()) == 0)
            done.add(cells[index].name(), {textOf(runCell(bench, cells[index], only))});
}

bool workTogether(const Wish &wish, const std::vector<Cell> &cells, const campaign::DoneFile &done) {
    void *shared =
        mmap(nullptr, sizeof(std::atomic<std::size_t>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto *next = new (shared) std::atomic<std::size_t>(0);
    for (int worker = 0; worker < wish.workers; ++worker)
        if (fork() == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            try {
                work(cells, done, wish.only, *next);
            } catch (const std::exception &exception) {
                std::fprintf(stderr, "%s\n", exception.what());
                std::_Exit(1);
            }
            std::_Exit(0);
        }
    bool good = true;
    for (int status = 0; wait(&status) > 0;)
        good = good && status == 0;
    return good;
}

void add(Count &sum, const Count &count) {
    sum = {sum.cases + count.cases, sum.right + count.right, sum.left + count.left, sum.lies + count.lies,
           sum.seconds + count.seconds};
}

int printTable(const std::map<std::string, std::vector<std::string>> &cells) {
    Count all;
    std::printf(
        "| what goes wrong | runs | ended well | said what failed, or ended by the signal | left the whole file "
        "beside its place | lies |\n|---|---|---|---|---|---|\n");
    for (const Sweep &sweep : sweeps()) {
        Count sum;
        for (const Job &job : jobs) {
            const auto found = cells.find(Cell{&job, &sweep}.name());
            add(sum, found == cells.end() ? Count{} : countOf(found->second.front()));
        }
        if (sum.cases > 0)
            std::printf("| %s | %u | %u | %u | %u | %u |\n", sweep.name.c_str(), sum.cases, sum.right,
                        sum.cases - sum.right, sum.left, sum.lies);
        add(all, sum);
    }
    std::printf("\n%u runs in %.0f s of processor time. Lies: %u.\n", all.cases, all.seconds, all.lies);
    return all.cases == 0 || all.lies > 0 ? 1 : 0;
}

int whole(const Wish &wish) {
    namespace fs = std::filesystem;
    const auto made = fs::last_write_time(CONSOLE_PROGRAM).time_since_epoch().count();
    const campaign::DoneFile done(wish.done, "cells done, of the console of " + std::to_string(made) + " " + wish.cell);
    const bool good = workTogether(wish, cellsOf(wish), done);
    const int status = printTable(done.read());
    if (good)
        fs::remove(done.path());
    return good ? status : 1;
}

// Some cases of all, at random, one after the other.
int spread(const Wish &wish) {
    Bench bench;
    std::mt19937 random(wish.seed);
    const std::vector<Cell> cells = cellsOf(wish);
    Count count;
    for (unsigned i = 0; i < wish.spread; ++i) {
        const Cell &cell = cells[random() % cells.size()];
        const std::vector<Case> cases = cell.sweep->cases(*cell.sweep, bench.good(*cell.job).run);
        if (!cases.empty())
            runCase(bench, cell, cases, random() % cases.size(), count);
    }
    std::printf("%u runs: %u ended well; lies: %u; seed %u\n", count.cases, count.right, count.lies, wish.seed);
    return count.cases == 0 || count.lies > 0 ? 1 : 0;
}

Wish readWords(int count, char **words) {
    Wish wish;
    wish.workers = int(sysconf(_SC_NPROCESSORS_ONLN));
    wish.done = std::string(words[0]) + ".done";
    for (int i = 1; i < count; i += 2) {
        const std::string word = words[i];
        const char *value = i + 1 < count ? words[i + 1] : "";
        if (word == "--seed")
            wish.seed = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
        else if (word == "--spread" && std::atoi(value) > 0)
            wish.spread = static_cast<unsigned>(std::atoi(value));
        else if (word == "--workers" && std::atoi(value) > 0)
            wish.workers = std::atoi(value);
        else if (word == "--cell")
            wish.cell = value;
        else if (word == "--case")
            wish.only = std::atoi(value);
        else if (word == "--done")
            wish.done = value;
        else
            wish.trouble = words[i];
    }
    return wish;
}

} // namespace
} // namespace host

int main(int count, char **words) {
    const host::Wish wish = host::readWords(count, words);
    if (wish.trouble) {
        std::fprintf(
            stderr,
            "%s?\nusage: host-campaign [--spread N --seed N] [--cell NAME] [--case N] [--workers N] [--done FILE]\n",
            wish.trouble);
        return 2;
    }
    try {
        if (host::mayWatch())
            return wish.spread > 0 ? host::spread(wish) : host::whole(wish);
        std::fprintf(stderr, "no process may watch another one here\n");
        return host::skipped;
    } catch (const std::exception &exception) {
        std::fprintf(stderr, "%s\n", exception.what());
        return 1;
    }
}
