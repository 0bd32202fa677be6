// Many processes on one register, killed at any moment and started again, until so many units are made. Afterwards
// every number stands on one chip, every chip has one number, and nothing is open or lost.
//
// usage: register-storm [--units N] [--processes N]
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include "line/register/Register.h"

namespace {

constexpr char planHash[] = "5be1";
constexpr int chipsPerUnit = 2; // from as many chips more are taken than units are wanted
constexpr auto shortestLife = std::chrono::milliseconds(20);
constexpr int livesDiffer = 800; // ms

struct Storm {
    int units = 10000;
    int processes = 8;
    std::string path;
};

std::string uidOf(int chip) {
    char text[25];
    std::snprintf(text, sizeof text, "%024x", static_cast<unsigned int>(chip));
    return text;
}

Json recordOf(int chip) {
    return {{"v", 1},           {"attempt", nullptr}, {"station", "storm"}, {"nest", "A1"},
            {"order", "PO-88"}, {"uid", uidOf(chip)}, {"series", nullptr},  {"number", nullptr},
            {"plan", planHash}, {"result", "open"},   {"cause", nullptr},   {"started", timeNow()}};
}

// Makes units of chips that it meets by chance, until the order has its units. Those that it tells of passed are
// written to a pipe, one number of a chip each.
int make(const Storm &storm, unsigned int seed, int told) {
    std::mt19937 random(seed);
    Register units(storm.path);
    const Terms terms = {"S", 1, 1000000, storm.units, false};
    for (;;) {
        const int chip = static_cast<int>(random() % static_cast<unsigned int>(storm.units * chipsPerUnit));
        Beginning beginning = units.begin(recordOf(chip), terms, true);
        if (beginning.isUsedUp && units.made(planHash, "PO-88") >= storm.units)
            return 0;
        if (!beginning.cause.empty())
            continue;
        Json &record = beginning.record;
        if (random() % 4 == 0)
            units.burning(record.at("attempt"));
        const bool passes = random() % 8 != 0;
        record["result"] = passes ? "pass" : "fail";
        record["cause"] = passes ? Json() : Json("write");
        record = units.close(record, true);
        if (record.at("result") == "pass" && write(told, &chip, sizeof chip) != sizeof chip)
            return 1;
    }
}

pid_t begin(const Storm &storm, unsigned int seed, int told) {
    const pid_t process = fork();
    if (process != 0)
        return process;
    try {
        _exit(make(storm, seed, told));
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "register-storm: %s\n", failure.what());
        _exit(1);
    }
}

// Lets them work, and kills one of them again and again. Returns how many were killed; -1 where one failed by itself.
int rage(const Storm &storm, int told) {
    std::mt19937 random(1);
    std::vector<pid_t> all;
    unsigned int seed = 0;
    for (int i = 0; i < storm.processes; ++i)
        all.push_back(begin(storm, ++seed, told));
    for (int kills = 0; !all.empty();) {
        usleep(static_cast<useconds_t>((shortestLife.count() + random() % livesDiffer) * 1000 / all.size()));
        const std::size_t which = random() % all.size();
        kill(all[which], SIGKILL);
        int status = 0;
        waitpid(all[which], &status, 0);
        if (WIFSIGNALED(status)) {
            ++kills;
            all[which] = begin(storm, ++seed, told);
            continue;
        }
        if (WEXITSTATUS(status) != 0)
            return -1;
        all.erase(all.begin() + static_cast<std::ptrdiff_t>(which)); // it has seen that the order has its units
        if (all.empty())
            return kills;
    }
    return -1;
}

bool complain(const char *what, std::int64_t count) {
    std::printf("%s: %lld\n", what, static_cast<long long>(count));
    return false;
}

bool isWhole(const Storm &storm, int told) {
    Database all(storm.path, Database::Purpose::reading);
    const struct {
        const char *what;
        const char *sql;
    } wrong[] = {
        {"numbers on two chips", "SELECT count(*) - count(DISTINCT series || n) FROM number"},
        {"chips with two numbers", "SELECT count(*) - count(DISTINCT series || uid) FROM number"},
        {"chips that passed twice", "SELECT count(*) - count(DISTINCT uid) FROM attempt WHERE result = 'pass'"},
        {"attempts with another's number",
         "SELECT count(*) FROM attempt a JOIN number b ON a.uid = b.uid AND a.series = b.series WHERE a.n <> b.n"},
        {"open attempts", "SELECT count(*) FROM attempt WHERE result = 'open'"},
        {"closed attempts without a record of it",
         "SELECT count(*) FROM attempt LEFT JOIN record ON attempt = id "
         "WHERE text IS NULL OR text NOT LIKE '%\"result\":\"' || result || '\"%'"},
        {"closed attempts without a delivery",
         "SELECT count(*) FROM attempt LEFT JOIN delivery ON attempt = id WHERE attempt IS NULL"},
    };
    for (const auto &one : wrong)
        if (const std::int64_t count = all.number(one.sql, {}); count != 0)
            return complain(one.what, count);
    const std::int64_t passed = all.number("SELECT count(*) FROM attempt WHERE result = 'pass'", {});
    if (passed != storm.units)
        return complain("units that passed", passed);
    // Whoever was told of has passed.
    std::string integrity;
    all.each("PRAGMA integrity_check", {}, [&](const SqlRow &row) { integrity += row.text(0); });
    if (integrity != "ok")
        return complain(integrity.c_str(), 0);
    for (int chip; read(told, &chip, sizeof chip) == sizeof chip;)
        if (all.number("SELECT count(*) FROM attempt WHERE uid = $1 AND result = 'pass'", {uidOf(chip)}) != 1)
            return complain("told of, and not kept: chip", chip);
    return true;
}

int run(Storm storm) {
    char directory[] = "/tmp/zv32-storm.XXXXXX";
    storm.path = std::string(mkdtemp(directory)) + "/units.db";
    FILE *told = std::tmpfile(); // shared by all, so that each write is appended
    Register(storm.path).keepPlan(planHash, "storm", storm.units, "plan 1\n");
    const auto start = std::chrono::steady_clock::now();
    const int kills = rage(storm, fileno(told));
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    Register(storm.path).closeOrphans(true);
    lseek(fileno(told), 0, SEEK_SET);
    const bool whole = kills >= 0 && isWhole(storm, fileno(told));
    std::fclose(told);
    std::filesystem::remove_all(directory);
    std::printf("%d units, %d processes, %d kills, %.1f s: %s\n", storm.units, storm.processes, kills, time.count(),
                whole ? "nothing wrong" : "WRONG");
    return whole ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    Storm storm;
    for (int i = 1; i + 1 < argc; i += 2)
        (std::strcmp(argv[i], "--units") == 0 ? storm.units : storm.processes) = std::atoi(argv[i + 1]);
    try {
        return run(storm);
    } catch (const std::exception &failure) {
        std::fprintf(stderr, "register-storm: %s\n", failure.what());
        return 1;
    }
}
