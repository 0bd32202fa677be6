#include "tests/integration/SimulatedChip.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int startMs = 40; // the chip itself takes 20
constexpr int readyTries = 2000;
constexpr int tryMs = 5;

fs::path newDirectory() {
    // The chip keeps its own time, whatever is preloaded into the test.
    unsetenv("LD_PRELOAD");
    std::string pattern = fs::temp_directory_path() / "ring-XXXXXX";
    return mkdtemp(pattern.data());
}

std::string contentOf(const fs::path &file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

} // namespace

void waitForStart() {
    poll(nullptr, 0, startMs);
}

SimulatedChip::SimulatedChip(const std::string &name, const std::vector<std::string> &options)
    : directory_(newDirectory()), place_(placeIn(directory_)) {
    if (!place_.chipPreload.empty())
        startBus();
    std::vector<std::string> words = {"/usr/bin/env"};
    if (!place_.chipPreload.empty())
        words.push_back("LD_PRELOAD=" + place_.chipPreload);
    for (const std::string &word : {std::string(SIMULATOR), std::string("--chip"), name})
        words.push_back(word);
    words.insert(words.end(), place_.simulatorWords.begin(), place_.simulatorWords.end());
    words.insert(words.end(), options.begin(), options.end());
    process_ = start(words, "chip");
    awaitReady();
}

SimulatedChip::~SimulatedChip() {
    for (const pid_t process : {process_, bus_}) {
        if (process > 0) {
            kill(process, SIGTERM);
            waitpid(process, nullptr, 0);
        }
    }
    fs::remove_all(directory_);
}

void SimulatedChip::startBus() {
    setenv("CAN_SHIM_DIR", directory_.c_str(), 1);
    const std::string commands = directory_ / "commands";
    mkfifo(commands.c_str(), 0600);
    // Opened for both directions, so that the bus never sees its end.
    bus_ = start({"/bin/sh", "-c", "exec \"$0\" \"$1\" <>\"$2\"", CAN_BUS, directory_ / "can0", commands}, "bus");
    for (int i = 0; i < readyTries && contentOf(directory_ / "bus.out").empty(); ++i)
        poll(nullptr, 0, tryMs);
}

std::string SimulatedChip::log() const {
    return contentOf(directory_ / "chip.err");
}

void SimulatedChip::pressReset() const {
    kill(process_, SIGUSR1);
    waitForStart();
}

pid_t SimulatedChip::start(std::vector<std::string> words, const std::string &name) const {
    std::vector<char *> arguments;
    for (std::string &word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const std::string out = directory_ / (name + ".out");
    const std::string err = directory_ / (name + ".err");
    constexpr int toNewFile = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out.c_str(), toNewFile, 0600);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err.c_str(), toNewFile, 0600);
    pid_t process = -1;
    const int failed = posix_spawn(&process, arguments[0], &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (failed != 0)
        throw std::runtime_error("cannot start " + words[0]);
    return process;
}

void SimulatedChip::awaitReady() const {
    for (int i = 0; i < readyTries; ++i) {
        const std::string ready = contentOf(directory_ / "chip.out");
        if (ready.find('\n') != std::string::npos) {
            // "ready", the port, and for an emulated node the directory that it lives in.
            std::istringstream words(ready);
            std::string word, nodes;
            if (words >> word >> word >> nodes)
                setenv("UMOCKDEV_DIR", nodes.c_str(), 1);
            return;
        }
        poll(nullptr, 0, tryMs);
    }
    throw std::runtime_error("no chip: " + log());
}
