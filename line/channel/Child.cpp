#include "line/channel/Child.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int noProgram = 127;

// In the new process, where nothing but system calls is allowed.
[[noreturn]] void become(const char *path, char *const *words, pid_t parent, int descriptor, int as) {
    // MEANT: a process that makes a unit must not go on without the one that keeps the record.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    signal(SIGPIPE, SIG_DFL);
    const int nothing = open("/dev/null", O_RDONLY);
    if (getppid() != parent || nothing < 0 || dup2(nothing, STDIN_FILENO) < 0)
        _exit(noProgram);
    // A descriptor that has its number already would keep its mark to be closed.
    if (descriptor == as ? fcntl(as, F_SETFD, 0) < 0 : dup2(descriptor, as) < 0)
        _exit(noProgram);
    execv(path, words);
    _exit(noProgram);
}

} // namespace

Child::Child(const std::string &path, const std::vector<std::string> &words, int descriptor, int as) {
    std::vector<char *> list = {const_cast<char *>(path.c_str())};
    for (const std::string &word : words)
        list.push_back(const_cast<char *>(word.c_str()));
    list.push_back(nullptr);
    const pid_t parent = getpid();
    m_process = fork();
    if (m_process == 0)
        become(path.c_str(), list.data(), parent, descriptor, as);
    if (m_process < 0)
        throw std::runtime_error(std::string("no process to be had: ") + std::strerror(errno));
}

Child::~Child() {
    kill(m_process, SIGTERM);
    while (waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::string besideUs(const std::string &way) {
    return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / way).lexically_normal();
}
