#include "tests/zvbl/CanBusProcess.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

CanBusProcess::CanBusProcess(unsigned bitsPerSecond) {
    char name[] = "/tmp/zvbl-can-XXXXXX";
    int commands[2], replies[2];
    if (!mkdtemp(name) || pipe2(commands, O_CLOEXEC) != 0 || pipe2(replies, O_CLOEXEC) != 0)
        throw std::runtime_error("no directory, no pipe");
    m_directory = name;
    const std::string path = m_directory + "/can0", rate = std::to_string(bitsPerSecond);
    m_process = fork();
    if (m_process == 0) {
        dup2(commands[0], STDIN_FILENO);
        dup2(replies[1], STDOUT_FILENO);
        execl(CAN_BUS_PROGRAM, "can-bus", path.c_str(), rate.c_str(), nullptr);
        _exit(127);
    }
    ::close(commands[0]);
    ::close(replies[1]);
    m_commands = commands[1];
    m_replies = replies[0];
    if (readLine() != "ready")
        throw std::runtime_error("no bus");
    setenv("CAN_SHIM_DIR", m_directory.c_str(), 1);
}

CanBusProcess::~CanBusProcess() {
    ::close(m_commands); // its end
    ::close(m_replies);
    waitpid(m_process, nullptr, 0);
    unsetenv("CAN_SHIM_DIR");
    std::filesystem::remove_all(m_directory);
}

void CanBusProcess::tell(const std::string &command) {
    const std::string line = command + "\n";
    if (write(m_commands, line.data(), line.size()) != static_cast<ssize_t>(line.size()) || readLine() != "ok")
        throw std::runtime_error("the bus does not do it: " + command);
}

std::string CanBusProcess::readLine() {
    std::string line;
    char c = 0;
    while (read(m_replies, &c, 1) == 1 && c != '\n')
        line += c;
    return line;
}
