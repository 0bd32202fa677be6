#include "bench/Chip.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> portWords(Place place, const std::string &port) {
    switch (place) {
    case Place::usart: return {"--usart", port};
    case Place::slcan: return {"--slcan", port};
    case Place::can: return {"--can", "can0"};
    case Place::i2c: return {"--i2c", "i2c-1"};
    case Place::spi: return {"--spi", "spidev0.0"};
    case Place::dfu: return {"--dfu"};
    }
    return {};
}

std::string contentOf(const std::string &path) {
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// As exec takes them: with a null at the end.
std::vector<char *> pointersTo(const std::vector<std::string> &texts) {
    std::vector<char *> pointers;
    for (const std::string &text : texts)
        pointers.push_back(const_cast<char *>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

void end(pid_t process) {
    if (process > 0) {
        ::kill(process, SIGTERM);
        ::waitpid(process, nullptr, 0);
    }
}

} // namespace

Chip::Chip(Place place, const std::string &programs, int unit) : m_place(place), m_programs(programs) {
    std::string name = (fs::temp_directory_path() / "links_bench.XXXXXX").string();
    if (!::mkdtemp(name.data()))
        throw std::runtime_error("no directory for the chip");
    m_dir = name;
    if (m_place == Place::can) {
        // Opened for both directions, so that the bus never sees its end.
        ::mkfifo((m_dir + "/commands").c_str(), 0600);
        m_bus = start({"sh", "-c", "exec \"$0\" \"$1\" 250000 <>\"$2\"", m_programs + "/doubles/can-bus",
                       m_dir + "/can0", m_dir + "/commands"},
                      "/bus", {});
        while (contentOf(m_dir + "/bus").empty()) {
            if (::waitpid(m_bus, nullptr, WNOHANG) == m_bus) {
                m_bus = -1;
                throw std::runtime_error("the CAN bus did not start");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    Words command{m_programs + "/bin/zv32-sim", "--chip", "ZV32F403A_1024K", "--unit", std::to_string(unit)};
    if (m_place != Place::can) // there the bus takes the time of the frames, once
        command.emplace_back("--baud-pace");
    for (const std::string &word : portWords(m_place, port()))
        command.push_back(word);
    m_chip = start(command, "/chip", surroundings());
    awaitReady();
}

Chip::~Chip() {
    end(m_chip);
    end(m_bus);
    std::error_code ignored;
    fs::remove_all(m_dir, ignored);
}

// What the environment of a program needs so that it finds the port.
Chip::Words Chip::surroundings() const {
    if (m_place == Place::can)
        return {"CAN_SHIM_DIR=" + m_dir, "LD_PRELOAD=" + m_programs + "/doubles/libcan_shim.so"};
    if (!m_nodes.empty())
        return {"UMOCKDEV_DIR=" + m_nodes, "LD_PRELOAD=libumockdev-preload.so.0"};
    return {};
}

// The first of two variables of one name counts.
pid_t Chip::start(const Words &command, const std::string &output, const Words &environment) const {
    std::vector<char *> words = pointersTo(command);
    std::vector<char *> variables = pointersTo(environment);
    variables.pop_back();
    for (char **variable = environ; *variable; ++variable)
        variables.push_back(*variable);
    variables.push_back(nullptr);
    const std::string name = m_dir + output;
    const pid_t process = ::fork();
    if (process != 0)
        return process;
    ::dup2(::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
    ::execvpe(words[0], words.data(), variables.data());
    ::_exit(127);
}

// "ready", the port, and after the name of an emulated node the directory that it lives in.
void Chip::awaitReady() {
    std::string ready;
    while (ready.find('\n') == std::string::npos) {
        if (::waitpid(m_chip, nullptr, WNOHANG) == m_chip) {
            m_chip = -1;
            throw std::runtime_error("the simulated chip did not start");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        ready = contentOf(m_dir + "/chip");
    }
    std::istringstream words(ready);
    std::string word;
    words >> word >> word >> m_nodes;
}

void Chip::run(const Words &command, const std::string &libraries) const {
    Words environment = surroundings();
    if (!libraries.empty())
        environment.push_back("LD_LIBRARY_PATH=" + libraries);
    int status = 0;
    ::waitpid(start(command, "/output", environment), &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(command.front() + " failed");
}

std::string Chip::outputOf(const Words &command, const std::string &libraries) const {
    run(command, libraries);
    return contentOf(m_dir + "/output");
}

double Chip::secondsOf(const Words &command, const std::string &libraries) const {
    const auto begin = std::chrono::steady_clock::now();
    run(command, libraries);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

} // namespace bench
