#include "sim/Options.h"
#include "sim/State.h"
#include "sim/fronts/UsartFront.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>
#include <sys/signalfd.h>

namespace {

enum ExitStatus { ended = 0, failed = 1, badCommandLine = 2 };

constexpr std::size_t megabyte = 1024 * 1024;

int complain(const std::string &error, ExitStatus status) {
    std::cerr << "zv32-sim: " << error << std::endl;
    return status;
}

int list() {
    for (const sim::ChipFacts &chip : sim::chipTable()) {
        std::printf("%-18s %02X  %0*X %*s%4u KB  %u\n", chip.name.data(), static_cast<unsigned>(chip.series),
                    chip.idLength == 2 ? 4 : 8, static_cast<unsigned>(chip.pid), chip.idLength == 2 ? 4 : 0, "",
                    chip.flashKb, chip.sectorSize);
    }
    return ended;
}

// From here on signals are read, not delivered.
int takeSignals() {
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1}) {
        sigaddset(&set, signal);
    }
    sigprocmask(SIG_BLOCK, &set, nullptr);
    return signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
}

int serve(sim::Options &options, std::ostream &out) {
    const int signals = takeSignals();
    sim::Log log(out, options.verbose);
    options.faults.tell([&log](const std::string &spec) { log.fault(spec); });
    sim::Chip chip(*options.chip, options.spimMb * megabyte, options.flashTime, options.faults);
    std::optional<sim::StateFile> state;
    std::string error;
    if (!options.state.empty()) {
        state.emplace(options.state, chip);
        if (!state->load(error) || !state->save(error)) {
            return complain(error, failed);
        }
    }
    const auto save = [&] {
        if (state && !state->save(error)) {
            complain(error, failed);
        }
    };
    sim::Bootloader bootloader(chip, options.faults, log);
    sim::UsartFront front(options.usart, options.pace, bootloader, options.faults, log, save);
    if (!front.serve(signals, error)) {
        return complain(error, failed);
    }
    error.clear();
    save();
    return error.empty() ? ended : failed;
}

} // namespace

int main(int argc, char **argv) {
    sim::Options options;
    std::string error;
    if (!sim::parseOptions(argc, argv, options, error)) {
        return complain(error + "\nTry zv32-sim --help", badCommandLine);
    }
    if (options.task == sim::Options::Task::help) {
        std::fputs(sim::helpText, stdout);
        return ended;
    }
    if (options.task == sim::Options::Task::list) {
        return list();
    }
    if (options.log.empty()) {
        return serve(options, std::cerr);
    }
    std::ofstream file(options.log, std::ios::app);
    return file ? serve(options, file) : complain("cannot write \"" + options.log + "\"", failed);
}
