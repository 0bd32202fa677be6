// files_bench [--dir DIR] [--rounds N] [--objcopy PROGRAM]
//
// Measures whole conversions through libFiles beside GNU objcopy and beside a bare read and write of
// as many bytes: round by round, each program in turn, the least time of all rounds. Ends with 1 if
// a result is wrong; a missed goal is only told, since a busy machine misses it too.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

#include "bench/Inputs.h"
#include "bench/Process.h"

namespace {

using bench::Cost;
namespace fs = std::filesystem;

constexpr double Megabyte = 1024 * 1024;

struct Options {
    std::string dir = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : fs::temp_directory_path().string();
    int rounds = 9;
    std::string objcopy = "objcopy";
};

struct Case {
    const char *name;
    std::string input;
    std::string suffix;                      // of the output
    std::vector<std::string> objcopyFormats; // empty: not compared
    double goal;                             // times as fast as objcopy, 0: none
    double bareGoal;                         // at most so many times the bare read and write, 0: none
    double imageMegabytes;
};

// What ran and what came of it.
struct Result {
    Cost ours{1e9, 0};
    Cost objcopy{1e9, 0};
    Cost bare{1e9, 0};
    bool right = false;
};

void keepBest(Cost &best, const Cost &cost) {
    best.milliseconds = std::min(best.milliseconds, cost.milliseconds);
    best.peakMegabytes = std::max(best.peakMegabytes, cost.peakMegabytes);
}

class Bench {
public:
    Bench(const Options &options, const std::string &programs)
        : m_options(options), m_dir(options.dir + "/files_bench." + std::to_string(::getpid())), m_programs(programs) {
        fs::create_directory(m_dir);
    }
    ~Bench() {
        std::error_code ignored;
        fs::remove_all(m_dir, ignored);
    }
    Bench(const Bench &) = delete;
    Bench &operator=(const Bench &) = delete;

    bool run();

private:
    std::string file(const std::string &name) const { return m_dir + "/" + name; }
    void makeInputs() const;
    std::vector<std::string> objcopyCommand(const std::vector<std::string> &formats, const std::string &in,
                                            const std::string &out) const;
    Result measure(const Case &one) const;
    bool isRight(const Case &one, const std::string &ours, const std::string &theirs) const;

    Options m_options;
    std::string m_dir;
    std::string m_programs;
};

std::vector<std::string> Bench::objcopyCommand(const std::vector<std::string> &formats, const std::string &in,
                                               const std::string &out) const {
    std::vector<std::string> command{m_options.objcopy, "--gap-fill", "0xFF"};
    command.insert(command.end(), formats.begin(), formats.end());
    command.push_back(in);
    command.push_back(out);
    return command;
}

void Bench::makeInputs() const {
    bench::writeBinary(file("image.bin"));
    bench::writeScattered(file("scattered.hex"));
    bench::writeShuffled(file("shuffled.hex"));
    for (const auto &[format, name] : {std::pair<std::string, std::string>{"ihex", "image.hex"}, {"srec", "image.s19"}})
        bench::runProcess(objcopyCommand({"-I", "binary", "-O", format, "--change-addresses", "0x08000000"},
                                         file("image.bin"), file(name)));
}

Result Bench::measure(const Case &one) const {
    const std::string in = file(one.input);
    const std::string ours = file("ours" + one.suffix);
    const std::string theirs = file("theirs" + one.suffix);
    const std::string bare = file("bare");
    Result result;
    for (int round = 0; round < m_options.rounds; ++round) {
        // Nobody pays for taking an old result away.
        for (const std::string &path : {ours, theirs, bare})
            fs::remove(path);
        keepBest(result.ours, bench::runProcess({m_programs + "/zv32-imgconv", in, ours}));
        if (!one.objcopyFormats.empty())
            keepBest(result.objcopy, bench::runProcess(objcopyCommand(one.objcopyFormats, in, theirs)));
        keepBest(result.bare,
                 bench::runProcess({m_programs + "/bare-copy", in, bare, std::to_string(fs::file_size(ours))}));
    }
    result.right = isRight(one, ours, theirs);
    return result;
}

// Binaries are compared as they are; records may be cut differently, so they are turned back first.
bool Bench::isRight(const Case &one, const std::string &ours, const std::string &theirs) const {
    if (one.suffix == ".bin")
        return bench::sameContent(ours, one.objcopyFormats.empty() ? file("image.bin") : theirs);
    bench::runProcess(objcopyCommand({"-I", "ihex", "-O", "binary"}, ours, file("back.bin")));
    return bench::sameContent(file("back.bin"), file(one.input));
}

const char *verdict(double goal, bool met) {
    return goal == 0 ? "" : met ? " ok" : " MISSED";
}

void print(const Case &one, const Result &result) {
    const double ratio = result.objcopy.milliseconds / result.ours.milliseconds;
    const double overBare = result.ours.milliseconds / result.bare.milliseconds;
    const double memory = 2 * one.imageMegabytes + 8;
    std::printf("%-26s %8.1f ms", one.name, result.ours.milliseconds);
    if (one.objcopyFormats.empty())
        std::printf("  objcopy        -                ");
    else
        std::printf("  objcopy %8.1f ms %5.1f x (%g)%s", result.objcopy.milliseconds, ratio, one.goal,
                    verdict(one.goal, ratio >= one.goal));
    std::printf("  bare %6.1f ms %4.2f x", result.bare.milliseconds, overBare);
    if (one.bareGoal > 0)
        std::printf(" (%g)%s", one.bareGoal, verdict(one.bareGoal, overBare <= one.bareGoal));
    std::printf("  peak %5.1f MB (%.1f)%s%s\n", result.ours.peakMegabytes, memory,
                verdict(memory, result.ours.peakMegabytes <= memory), result.right ? "" : "  WRONG RESULT");
    std::fflush(stdout);
}

bool Bench::run() {
    makeInputs();
    std::printf("%d rounds in %s, least times; in brackets the goals\n", m_options.rounds, m_options.dir.c_str());
    const double whole = bench::ImageSize / Megabyte;
    const double scattered = bench::ScatteredRuns * bench::ScatteredRunSize / Megabyte;
    const Case cases[] = {
        {"HEX to binary, 16 MB", "image.hex", ".bin", {"-I", "ihex", "-O", "binary"}, 6, 2.5, whole},
        {"S-record to binary, 16 MB", "image.s19", ".bin", {"-I", "srec", "-O", "binary"}, 5.5, 0, whole},
        {"binary to HEX, 16 MB", "image.bin", ".hex", {"-I", "binary", "-O", "ihex"}, 2, 0, whole},
        {"64,000 scattered runs", "scattered.hex", ".bin", {"-I", "ihex", "-O", "binary"}, 12, 0, scattered},
        {"a million shuffled records", "shuffled.hex", ".bin", {}, 0, 0, whole},
    };
    bool right = true;
    for (const Case &one : cases) {
        const Result result = measure(one);
        print(one, result);
        right &= result.right;
    }
    return right;
}

bool parse(int argc, char **argv, Options &options) {
    for (int i = 1; i < argc; i += 2) {
        const std::string word = argv[i];
        if (i + 1 == argc)
            return false;
        if (word == "--dir")
            options.dir = argv[i + 1];
        else if (word == "--rounds")
            options.rounds = std::max(1, std::atoi(argv[i + 1]));
        else if (word == "--objcopy")
            options.objcopy = argv[i + 1];
        else
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    Options options;
    if (!parse(argc, argv, options)) {
        std::fprintf(stderr, "usage: files_bench [--dir DIR] [--rounds N] [--objcopy PROGRAM]\n");
        return 2;
    }
    try {
        return Bench(options, fs::read_symlink("/proc/self/exe").parent_path().string()).run() ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "files_bench: %s\n", error.what());
        return 1;
    }
}
