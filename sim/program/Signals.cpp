#include "sim/program/Signals.h"

#include <csignal>
#include <initializer_list>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "sim/ports/Clock.h"

namespace sim {

int takeSignals() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // the write fails instead, with a text
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1})
        sigaddset(&set, signal);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    return signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
}

Wish nextWish(int signals) {
    struct signalfd_siginfo info {};
    if (read(signals, &info, sizeof info) != static_cast<ssize_t>(sizeof info))
        return Wish::none;
    return info.ssi_signo == static_cast<std::uint32_t>(SIGUSR1) ? Wish::reset : Wish::end;
}

Wish waitUnplugged(int signals, Nanoseconds time) {
    const Nanoseconds end = clockNow() + time;
    for (Nanoseconds now = clockNow(); now < end; now = clockNow()) {
        struct pollfd fd = {signals, POLLIN, 0};
        const struct timespec left = timespecOf(end - now);
        ppoll(&fd, 1, &left, nullptr);
        for (Wish wish = nextWish(signals); wish != Wish::none; wish = nextWish(signals))
            if (wish == Wish::end)
                return wish;
    }
    return Wish::none;
}

} // namespace sim
