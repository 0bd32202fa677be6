#include <csignal>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/host/Place.h"

namespace host {

SimulatedChip::SimulatedChip(const std::string &directory) {
    const std::string port = directory + "/port";
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    m_process = fork();
    if (m_process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(ends[1], 1);
        dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), 2);
        execl(SIMULATOR, "zv32-sim", "--chip", "ZV32F421_64K", "--usart", port.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    char said = 0;
    const bool isReady = read(ends[0], &said, 1) == 1;
    close(ends[0]);
    if (!isReady)
        throw std::runtime_error("the simulated chip does not start");
}

SimulatedChip::~SimulatedChip() {
    kill(m_process, SIGTERM);
    waitpid(m_process, nullptr, 0);
}

} // namespace host
