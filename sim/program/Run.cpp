#include "sim/program/Run.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <optional>

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "sim/program/LogFile.h"
#include "sim/program/Options.h"
#include "sim/program/PortLoop.h"
#include "sim/program/Signals.h"
#include "sim/program/State.h"

namespace sim {

namespace {

enum ExitStatus { ended = 0, failed = 1, badCommandLine = 2 };

constexpr std::size_t megabyte = 1024 * 1024;

int complain(const std::string &error, ExitStatus status) {
    std::cerr << "zv32-sim: " << error << std::endl;
    return status;
}

int list() {
    for (const ChipFacts &chip : chipTable())
        std::printf("%-18s %02X  %0*X %*s%4u KB  %u\n", chip.name.data(), static_cast<unsigned>(chip.series),
                    chip.idLength == 2 ? 4 : 8, static_cast<unsigned>(chip.pid), chip.idLength == 2 ? 4 : 0, "",
                    chip.flashKb, chip.sectorSize);
    return ended;
}

// The same command line for the program beside this one that serves that port.
int runBeside(char **argv, const PortKind &kind) {
    char self[4096];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self);
    const std::string own(self, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    const std::string path = own.substr(0, own.rfind('/') + 1) + kind.program;
    if (access(path.c_str(), F_OK) != 0)
        return complain(std::string("--") + kind.option + " is served by \"" + path +
                            "\", which is not there: it is built where the package libumockdev-dev is installed, and "
                            "needs the package umockdev to run",
                        failed);
    const char *others = std::getenv("LD_PRELOAD");
    const std::string preload = others && *others ? std::string(":") + others : std::string();
    setenv("LD_PRELOAD", ("libumockdev-preload.so.0" + preload).c_str(), 1);
    execv(path.c_str(), argv);
    return complain("cannot start \"" + path + "\": " + std::strerror(errno), failed);
}

// Serves until the end; what is left to save then is the caller's business.
int servePort(const Options &options, const Machine &machine, PortLoop loop) {
    std::string error;
    if (!loop.run(error))
        return complain(error, failed);
    machine.log.note("bytes: " + std::to_string(options.faults.bytes(Direction::rx)) + " from the host, " +
                     std::to_string(options.faults.bytes(Direction::tx)) + " to it");
    return ended;
}

int serve(Options &options, std::ostream &out) {
    const int signals = takeSignals(); // before there are threads
    prctl(PR_SET_TIMERSLACK, 1UL);     // bytes are due to the microsecond, and the threads of a port get it too
    Log log(out, options.verbose);
    options.faults.tell([&log](const std::string &spec) { log.fault(spec); });
    Chip chip(*options.chip, options.spimMb * megabyte, options.flashTime, options.faults, numberOf(options.unit, 0));
    std::optional<StateFile> state;
    std::string error;
    if (!options.state.empty()) {
        state.emplace(options.state, chip);
        if (!state->load(error) || !state->save(error))
            return complain(error, failed);
    }
    int saved = ended;
    const auto save = [&] { saved = state && !state->save(error) ? complain(error, failed) : ended; };
    const Machine machine{chip,
                          options.faults,
                          log,
                          options.wiring,
                          options.pace,
                          options.unit,
                          options.beside,
                          options.spimMb * megabyte,
                          options.flashTime};
    const std::unique_ptr<Port> port = options.kind->make(machine, options.port, error);
    if (!port)
        return complain(error, failed);
    const int status = servePort(options, machine, PortLoop(*port, signals, save));
    if (status == ended)
        save();
    port->awaitClients();
    return status == ended ? saved : status;
}

// What is opened later must not become one of the three: a port as standard error would get the log.
void openStandardDescriptors() {
    for (int fd = 0; fd <= 2; ++fd)
        if (fcntl(fd, F_GETFD) == -1 && errno == EBADF)
            open("/dev/null", O_RDWR);
}

int runOptions(int argc, char **argv, const PortKinds &kinds) {
    Options options;
    std::string error;
    if (!parseOptions(argc, argv, kinds, options, error))
        return complain(error + "\nTry zv32-sim --help", badCommandLine);
    if (options.task == Options::Task::help) {
        std::fputs(helpText, stdout);
        return ended;
    }
    if (options.task == Options::Task::list)
        return list();
    if (options.kind->program != nullptr)
        return runBeside(argv, *options.kind);
    if (options.log.empty())
        return serve(options, std::cerr);
    LogFile file;
    return file.open(options.log, error) ? serve(options, file.stream()) : complain(error, failed);
}

} // namespace

int run(int argc, char **argv, const PortKinds &kinds) {
    openStandardDescriptors();
    try {
        return runOptions(argc, argv, kinds);
    } catch (const std::bad_alloc &) {
        return complain("out of memory", failed);
    } catch (const std::exception &failure) {
        return complain(failure.what(), failed);
    }
}

} // namespace sim
