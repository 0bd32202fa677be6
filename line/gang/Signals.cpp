#include "line/gang/Signals.h"

#include <csignal>
#include <stdexcept>

#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t endingOnes() {
    sigset_t set;
    sigemptyset(&set);
    for (const int one : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&set, one);
    return set;
}

} // namespace

Signals::Signals() {
    const sigset_t set = endingOnes();
    sigprocmask(SIG_BLOCK, &set, nullptr);
    m_descriptor = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0)
        throw std::runtime_error("signals can't be waited for");
}

// One that nobody has taken ends the program now, as it would have done before.
Signals::~Signals() {
    close(m_descriptor);
    const sigset_t set = endingOnes();
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

int Signals::take() {
    int count = 0;
    signalfd_siginfo one;
    while (read(m_descriptor, &one, sizeof one) == static_cast<ssize_t>(sizeof one))
        ++count;
    return count;
}
