#include "tests/look/DoctorPlace.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <grp.h>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

FakeMachine::FakeMachine() {
    std::string pattern = (fs::temp_directory_path() / "machine.XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no directory");
    m_root = pattern;
}

FakeMachine::~FakeMachine() {
    std::error_code ignored;
    fs::remove_all(m_root, ignored);
}

void FakeMachine::file(const std::string &path, const std::string &text) const {
    fs::create_directories(fs::path(m_root + path).parent_path());
    std::ofstream(m_root + path) << text;
}

void FakeMachine::link(const std::string &path, const std::string &target) const {
    fs::create_directories(fs::path(m_root + path).parent_path());
    fs::create_directories(m_root + target);
    fs::create_symlink(m_root + target, m_root + path);
}

Pty::Pty() : m_master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0)
        throw std::runtime_error("no pseudo terminal");
    m_path = ptsname(m_master);
}

Pty::~Pty() {
    if (m_thread.joinable())
        m_thread.join();
    unplug();
}

void Pty::farEnd(std::function<void(int)> run) {
    m_thread = std::thread(std::move(run), m_master);
}

void Pty::unplug() {
    if (m_master >= 0)
        close(m_master);
    m_master = -1;
}

Holder::Holder(const std::string &name, const std::string &path) {
    int ready[2];
    if (pipe(ready) != 0)
        throw std::runtime_error("no pipe");
    m_process = fork();
    if (m_process == 0) {
        prctl(PR_SET_NAME, name.c_str());
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // What it has from us, the far end of the port too, is none of its business.
        dup2(ready[1], STDERR_FILENO);
        close_range(STDERR_FILENO + 1, ~0U, 0);
        const int held = open(path.c_str(), O_RDWR | O_NOCTTY);
        const bool told = write(STDERR_FILENO, "r", 1) == 1;
        while (held >= 0 && told)
            pause();
        _exit(1);
    }
    char byte = 0;
    const bool isReady = read(ready[0], &byte, 1) == 1;
    close(ready[0]);
    close(ready[1]);
    if (!isReady)
        throw std::runtime_error("no holder");
}

Holder::~Holder() {
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
}

bool asNobody(const std::function<bool()> &test) {
    constexpr uid_t nobody = 65534;
    const pid_t child = fork();
    if (child == 0) {
        const bool isChanged =
            geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
        _exit(isChanged && test() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
