// links_bench [--rounds N] [--link NAME]
//
// Measures a download, its verify and an upload through libZVBLLIB over each link beside what that link could carry
// if it never rested: the simulated chip takes the time of its wire, and nothing for its flash. Best of
// all rounds. Ends with 1 if a link fails or brings other bytes back; a missed goal is only told, since
// a busy machine misses it too.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

#include "bench/Ceiling.h"
#include "bench/Chip.h"

namespace {

namespace fs = std::filesystem;

struct Row {
    const char *name;
    bench::Place place;
    std::vector<std::string> probe; // type, port, baud, rate, speed, kilobytes; PORT is the chip's
    bench::Ceiling ceiling;         // bytes a second
    double downloadGoal;            // share of the ceiling, 0: none
    double uploadGoal;
};

std::vector<Row> rows() {
    using namespace bench;
    return {
        {"USART, 115,200 baud",
         Place::usart,
         {"0", "PORT", "115200", "0", "0", "64"},
         usartCeiling(115200),
         0.98,
         0.98},
        {"USART, 1,000,000 baud",
         Place::usart,
         {"0", "PORT", "1000000", "0", "0", "256"},
         usartCeiling(1000000),
         0.90,
         0.94},
        {"I2C, 400,000 Hz", Place::i2c, {"2", "i2c-1", "115200", "0", "0", "64"}, i2cCeiling(400000), 0, 0},
        {"SPI, 150,000 Hz", Place::spi, {"4", "spidev0.0", "115200", "0", "0", "32"}, spiCeiling(150000), 0, 0},
        {"SPI, 1,000,000 Hz",
         Place::spi,
         {"4", "spidev0.0", "115200", "1000000", "0", "128"},
         spiCeiling(1000000),
         0,
         0},
        {"CAN adapter, 250,000 bit/s", Place::slcan, {"3", "PORT", "115200", "2", "0", "32"}, canCeiling(250000), 0, 0},
        {"CAN adapter, 1,000,000 bit/s",
         Place::slcan,
         {"3", "PORT", "115200", "2", "1000000", "64"},
         canCeiling(1000000),
         0,
         0},
        {"SocketCAN, 250,000 bit/s", Place::can, {"3", "can0", "115200", "2", "0", "32"}, canCeiling(250000), 0, 0},
        {"USB DFU, full speed", Place::dfu, {"1", "-", "0", "0", "0", "512"}, dfuCeiling(), 0, 0},
    };
}

constexpr double verifyGoal = 1.03;

struct Rates {
    double download = 0;
    double upload = 0;
    double verifiedByCrc = 0; // the time of writing and verifying, of writing alone
    double verifiedByReading = 0;
};

Rates measure(const Row &row, int rounds, const std::string &programs) {
    Rates best;
    for (int round = 0; round < rounds; ++round) {
        const bench::Chip chip(row.place, programs);
        std::vector<std::string> command{programs + "/bench/link-probe"};
        for (const std::string &word : row.probe)
            command.push_back(word == "PORT" ? chip.port() : word);
        Rates rates;
        const std::string text = chip.outputOf(command);
        if (std::sscanf(text.c_str(), "%lf %lf %lf %lf", &rates.download, &rates.upload, &rates.verifiedByCrc,
                        &rates.verifiedByReading) != 4)
            throw std::runtime_error(std::string(row.name) + ": link-probe failed");
        best.download = std::max(best.download, rates.download);
        best.upload = std::max(best.upload, rates.upload);
        best.verifiedByCrc = round == 0 ? rates.verifiedByCrc : std::min(best.verifiedByCrc, rates.verifiedByCrc);
        best.verifiedByReading =
            round == 0 ? rates.verifiedByReading : std::min(best.verifiedByReading, rates.verifiedByReading);
    }
    return best;
}

void print(const char *what, double rate, double ceiling, double goal) {
    std::printf("  %s %9.0f B/s of %9.0f %5.1f %%", what, rate, ceiling, 100 * rate / ceiling);
    if (goal > 0)
        std::printf(" (%g)%s", 100 * goal, rate >= goal * ceiling ? " ok" : " MISSED");
}

bool run(int rounds, const std::string &only) {
    const std::string programs = fs::read_symlink("/proc/self/exe").parent_path().parent_path().string();
    bool right = true;
    std::printf("best of %d rounds; of what the link could carry if it never rested; in brackets the goals\n", rounds);
    for (const Row &row : rows()) {
        if (std::string(row.name).rfind(only, 0) != 0)
            continue;
        try {
            const Rates rates = measure(row, rounds, programs);
            std::printf("%-29s", row.name);
            print("download", rates.download, row.ceiling.download, row.downloadGoal);
            print("  upload", rates.upload, row.ceiling.upload, row.uploadGoal);
            std::printf("  write and verify %.3f of write (%g)%s, by reading %.3f\n", rates.verifiedByCrc, verifyGoal,
                        rates.verifiedByCrc <= verifyGoal ? " ok" : " MISSED", rates.verifiedByReading);
            std::fflush(stdout);
        } catch (const std::exception &error) {
            std::printf("%-29s  %s\n", row.name, error.what());
            right = false;
        }
    }
    return right;
}

} // namespace

int main(int argc, char **argv) {
    int rounds = 3;
    std::string only;
    for (int i = 1; i < argc; i += 2) {
        const std::string word = argv[i];
        if (i + 1 < argc && word == "--rounds") {
            rounds = std::max(1, std::atoi(argv[i + 1]));
        } else if (i + 1 < argc && word == "--link") {
            only = argv[i + 1];
        } else {
            std::fprintf(stderr, "usage: links_bench [--rounds N] [--link NAME]\n");
            return 2;
        }
    }
    return run(rounds, only) ? 0 : 1;
}
