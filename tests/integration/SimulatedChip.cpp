#include "tests/integration/SimulatedChip.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

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
    : directory_(newDirectory()) {
    std::vector<std::string> words = {SIMULATOR, "--chip", name, "--usart", port()};
    words.insert(words.end(), options.begin(), options.end());
    start(words);
    awaitReady();
}

SimulatedChip::~SimulatedChip() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
    fs::remove_all(directory_);
}

std::string SimulatedChip::port() const {
    return directory_ / "port";
}

std::string SimulatedChip::log() const {
    return contentOf(directory_ / "err");
}

void SimulatedChip::pressReset() const {
    kill(process_, SIGUSR1);
    waitForStart();
}

void SimulatedChip::start(std::vector<std::string> words) {
    std::vector<char *> arguments;
    for (std::string &word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const std::string out = directory_ / "out";
    const std::string err = directory_ / "err";
    constexpr int toNewFile = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out.c_str(), toNewFile, 0600);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err.c_str(), toNewFile, 0600);
    const int failed = posix_spawn(&process_, arguments[0], &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (failed != 0) {
        throw std::runtime_error("cannot start " + words[0]);
    }
}

void SimulatedChip::awaitReady() const {
    for (int i = 0; i < readyTries; ++i) {
        if (contentOf(directory_ / "out").find("ready") != std::string::npos) {
            return;
        }
        poll(nullptr, 0, tryMs);
    }
    throw std::runtime_error("no chip: " + log());
}
