// links_bench [--rounds N] [--link NAME] [--against LIBDIR] [--gang N] [--awake]
//
// Measures a download, its verify and an upload through libZVBLLIB over each link beside what that link could carry
// if it never rested, and a whole job of the console beside a client that does nothing else: the simulated chip takes
// the time of its wire, and nothing for its flash. Below each link stands where the time of a packet goes, from the
// same packets sent by a bare client: what the data take on the wire, what the protocol adds to them there, what the
// bare client needs more than that, which is the machine and an emulated device, and what the library needs more than
// the bare client. The last row is a USB transfer without the library. Best of all rounds. With --against each figure
// stands beside that of the libraries in another directory, in turns. With --gang so many chips and consoles are at
// work at once, beside one pair. With --awake no core is halted meanwhile: waking one costs as much as a short answer.
// Ends with 1 if a link fails or brings other bytes back; a missed goal is only told, since a busy machine misses it
// too.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

#include "bench/Awake.h"
#include "bench/Ceiling.h"
#include "bench/Chip.h"
#include "bench/Noise.h"
#include "bench/WholeProcess.h"

namespace {

namespace fs = std::filesystem;

struct Row {
    const char *name;
    bench::Place place;
    std::vector<std::string> probe; // type, port, baud, rate, speed, kilobytes; PORT is the chip's
    std::vector<std::string> bare;  // link, port, rate
    bench::Ceiling ceiling;         // bytes a second
    double downloadGoal;            // share of the ceiling
    double uploadGoal;
    double verifyGoal; // the time of writing and verifying by checksum, of writing alone
};

// clang-format off
std::vector<Row> rows() {
    using namespace bench;
    return {
        {"USART, 115,200 baud", Place::usart, {"0", "PORT", "115200", "0", "0", "64"}, {"usart", "PORT", "115200"},
         usartCeiling(115200), 0.98, 0.98, 1.03},
        {"USART, 1,000,000 baud", Place::usart, {"0", "PORT", "1000000", "0", "0", "256"},
         {"usart", "PORT", "1000000"}, usartCeiling(1000000), 0.91, 0.92, 1.02},
        {"I2C, 400,000 Hz", Place::i2c, {"2", "i2c-1", "115200", "0", "0", "64"}, {"i2c", "i2c-1", "400000"},
         i2cCeiling(400000), 0.85, 0.83, 1.02},
        {"SPI, 150,000 Hz", Place::spi, {"4", "spidev0.0", "115200", "0", "0", "32"}, {"spi", "spidev0.0", "150000"},
         spiCeiling(150000), 0.94, 0.94, 1.02},
        {"SPI, 1,000,000 Hz", Place::spi, {"4", "spidev0.0", "115200", "1000000", "0", "128"},
         {"spi", "spidev0.0", "1000000"}, spiCeiling(1000000), 0.78, 0.78, 1.02},
        {"CAN adapter, 250,000 bit/s", Place::slcan, {"3", "PORT", "115200", "2", "0", "32"},
         {"slcan", "PORT", "250000"}, canCeiling(250000), 0.92, 0.96, 1.02},
        {"CAN adapter, 1,000,000 bit/s", Place::slcan, {"3", "PORT", "115200", "2", "1000000", "64"},
         {"slcan", "PORT", "1000000"}, canCeiling(1000000), 0.90, 0.89, 1.03},
        {"SocketCAN, 250,000 bit/s", Place::can, {"3", "can0", "115200", "2", "0", "32"}, {"can", "can0", "250000"},
         canCeiling(250000), 0.93, 0.92, 1.02},
        {"USB DFU, full speed", Place::dfu, {"1", "-", "0", "0", "0", "512"}, {"dfu", "-", "0"}, dfuCeiling(),
         0.54, 0.76, 1.03},
    };
}
// clang-format on

// A whole job of the console, in times of its wire.
struct JobRow {
    const char *name;
    int baud;
    double goal;
};
constexpr JobRow jobRows[] = {{"Job at 115,200 baud", 115200, 1.021}, {"Job at 1,000,000 baud", 1000000, 1.125}};

// Transfers without the library.
struct TransfersRow {
    const char *name;
};
constexpr TransfersRow transfersRow = {"USB DFU, bare transfers"};

constexpr double gangGoal = 1.02;
constexpr double mostOfBare = 1.01; // the bare client does not ask who is there

struct Options {
    int rounds = 3;
    std::string link;    // rows that begin like this
    std::string against; // a directory of libraries
    int gang = 0;
    bool awake = false;
    std::string programs;
};

struct Rates {
    double download = 0;
    double upload = 0;
    double verifiedByCrc = 1e9; // the time of writing and verifying, of writing alone
    double verifiedByReading = 1e9;
};

std::vector<std::string> withPort(const std::vector<std::string> &words, const bench::Chip &chip) {
    std::vector<std::string> command = words;
    for (std::string &word : command)
        if (word == "PORT")
            word = chip.port();
    return command;
}

// One round, with a fresh chip.
void measure(const Row &row, const std::string &programs, const std::string &libraries, Rates &best) {
    const bench::Chip chip(row.place, programs);
    std::vector<std::string> command{programs + "/bench/link-probe"};
    for (const std::string &word : withPort(row.probe, chip))
        command.push_back(word);
    Rates rates;
    const std::string text = chip.outputOf(command, libraries);
    if (std::sscanf(text.c_str(), "%lf %lf %lf %lf", &rates.download, &rates.upload, &rates.verifiedByCrc,
                    &rates.verifiedByReading) != 4)
        throw std::runtime_error(std::string(row.name) + ": link-probe failed");
    best.download = std::max(best.download, rates.download);
    best.upload = std::max(best.upload, rates.upload);
    best.verifiedByCrc = std::min(best.verifiedByCrc, rates.verifiedByCrc);
    best.verifiedByReading = std::min(best.verifiedByReading, rates.verifiedByReading);
}

// The same packets without the library, with a fresh chip.
void measureBare(const Row &row, const std::string &programs, Rates &best) {
    const bench::Noise image(std::stoul(row.probe.back()) * 1024);
    const bench::Chip chip(row.place, programs);
    std::vector<std::string> command{programs + "/bench/bare-client"};
    for (const std::string &word : withPort(row.bare, chip))
        command.push_back(word);
    command.push_back(image.path());
    Rates rates;
    if (std::sscanf(chip.outputOf(command).c_str(), "%lf %lf", &rates.download, &rates.upload) != 2)
        throw std::runtime_error(std::string(row.name) + ": bare-client failed");
    best.download = std::max(best.download, rates.download);
    best.upload = std::max(best.upload, rates.upload);
}

void print(const char *what, double rate, double ceiling, double goal) {
    std::printf("  %s %9.0f B/s of %9.0f %5.1f %% (%g)%s", what, rate, ceiling, 100 * rate / ceiling, 100 * goal,
                rate >= goal * ceiling ? " ok" : " MISSED");
}

void print(const char *name, const Row &row, const Rates &rates) {
    std::printf("%-29s", name);
    print("download", rates.download, row.ceiling.download, row.downloadGoal);
    print("  upload", rates.upload, row.ceiling.upload, row.uploadGoal);
    std::printf("  write and verify %.3f of write (%g)%s, by reading %.3f\n", rates.verifiedByCrc, row.verifyGoal,
                rates.verifiedByCrc <= row.verifyGoal ? " ok" : " MISSED", rates.verifiedByReading);
}

// Where the time of a packet goes, in milliseconds.
void printSplit(const char *what, double packet, double data, double ceiling, double bare, double library) {
    const auto time = [&](double rate) { return 1000 * packet / rate; };
    std::printf("  %s %.3f = data %.3f + protocol %.3f + machine %.3f + library %.3f", what, time(library), time(data),
                time(ceiling) - time(data), time(bare) - time(ceiling), time(library) - time(bare));
}

void printSplit(const Row &row, const Rates &rates, const Rates &bare) {
    const double packet = row.place == bench::Place::dfu ? 2048 : 256;
    std::printf("  ms of %4.0f bytes            ", packet);
    printSplit("download", packet, row.ceiling.data, row.ceiling.download, bare.download, rates.download);
    printSplit("  upload", packet, row.ceiling.data, row.ceiling.upload, bare.upload, rates.upload);
    std::printf("\n");
}

void run(const Row &row, const Options &options) {
    Rates rates;
    Rates bare;
    Rates other;
    for (int round = 0; round < options.rounds; ++round) {
        measure(row, options.programs, {}, rates);
        measureBare(row, options.programs, bare);
        if (!options.against.empty())
            measure(row, options.programs, options.against, other);
    }
    print(row.name, row, rates);
    printSplit(row, rates, bare);
    if (!options.against.empty())
        print("  the other libraries", row, other);
}

void run(const JobRow &row, const Options &options) {
    const bench::WholeProcess job =
        bench::measureWholeProcess(row.baud, options.rounds, options.programs, options.against);
    const bool good = job.console <= row.goal * job.wire && job.console <= mostOfBare * job.bare;
    std::printf("%-29s  wire %.3f s  console %.3f s, %.4f of the wire (%g)  bare client %.3f s, %.4f%s", row.name,
                job.wire, job.console, job.console / job.wire, row.goal, job.bare, job.bare / job.wire,
                good ? " ok" : " MISSED");
    if (!options.against.empty())
        std::printf("  the other libraries %.3f s, %.4f", job.against, job.against / job.wire);
    std::printf("\n");
}

void runGang(const Options &options) {
    const bench::Gang gang = bench::measureGang(options.gang, jobRows[0].baud, options.programs);
    std::printf(
        "%d chips and consoles at once at 115,200 baud: one pair %.3f s, mean %.4f, slowest %.4f of that (%g)%s\n",
        options.gang, gang.alone, gang.mean / gang.alone, gang.slowest / gang.alone, gangGoal,
        gang.slowest <= gangGoal * gang.alone ? " ok" : " MISSED");
}

// What the bus does not need of such a transfer, the emulated device does.
void run(const TransfersRow &row, const Options &options) {
    const std::vector<std::string> command{options.programs + "/bench/bare-transfers", "500"};
    double byte = 1e9;
    double block = 1e9;
    for (int round = 0; round < options.rounds; ++round) {
        double newByte = 0;
        double newBlock = 0;
        const bench::Chip chip(bench::Place::dfu, options.programs);
        if (std::sscanf(chip.outputOf(command, {}).c_str(), "%lf %lf", &newByte, &newBlock) != 2)
            throw std::runtime_error("bare-transfers failed");
        byte = std::min(byte, newByte);
        block = std::min(block, newBlock);
    }
    std::printf("%-29s  of one byte %.3f ms, of which the bus %.3f  of 2048 bytes %.3f ms, of which the bus %.3f\n",
                row.name, byte, bench::dfuShortTransfer(), block, 1000 * 2048 / bench::dfuCeiling().upload);
}

// False when the row failed.
template <class AnyRow>
bool runIfWished(const AnyRow &row, const Options &options) {
    if (std::string(row.name).rfind(options.link, 0) != 0)
        return true;
    try {
        run(row, options);
        std::fflush(stdout);
        return true;
    } catch (const std::exception &error) {
        std::printf("%-29s  %s\n", row.name, error.what());
        return false;
    }
}

bool run(const Options &options) {
    if (options.gang > 0) {
        runGang(options);
        return true;
    }
    bool right = true;
    std::printf("best of %d rounds; of what the link could carry if it never rested; in brackets the goals\n",
                options.rounds);
    for (const JobRow &row : jobRows)
        right &= runIfWished(row, options);
    for (const Row &row : rows())
        right &= runIfWished(row, options);
    right &= runIfWished(transfersRow, options);
    return right;
}

bool parse(int argc, char **argv, Options &options) {
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        if (word == "--awake") {
            options.awake = true;
            continue;
        }
        if (++i == argc)
            return false;
        if (word == "--rounds")
            options.rounds = std::max(1, std::atoi(argv[i]));
        else if (word == "--link")
            options.link = argv[i];
        else if (word == "--against")
            options.against = fs::absolute(argv[i]).string();
        else if (word == "--gang")
            options.gang = std::max(1, std::atoi(argv[i]));
        else
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    Options options;
    if (!parse(argc, argv, options)) {
        std::fprintf(stderr, "usage: links_bench [--rounds N] [--link NAME] [--against LIBDIR] [--gang N] "
                             "[--awake]\n");
        return 2;
    }
    try {
        const bench::Awake awake(options.awake);
        options.programs = fs::read_symlink("/proc/self/exe").parent_path().parent_path().string();
        return run(options) ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "links_bench: %s\n", error.what());
        return 1;
    }
}
