#include "sim/ports/pty/UsartFront.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include <poll.h>
#include <sys/prctl.h>

#include "sim/ports/Clock.h"
#include "sim/program/Options.h"

namespace sim {

namespace {
constexpr Nanoseconds quiet = 20 * millisecond; // the line rests: time for the state file
}

UsartFront::UsartFront(Machine &machine, std::string path)
    : machine_(machine), path_(std::move(path)), bootloader_(machine.chip, machine.faults, machine.log),
      line_(pty_, machine.options.pace, bootloader_, machine.faults, machine.log) {
    prctl(PR_SET_TIMERSLACK, 1UL); // bytes are due to the microsecond
}

bool UsartFront::plugIn(std::string &error) {
    if (!pty_.open(path_, error))
        return false;
    std::printf("ready %s\n", path_.c_str());
    std::fflush(stdout);
    return true;
}

bool UsartFront::serve(std::string &error) {
    if (!plugIn(error))
        return false;
    for (;;) {
        wait();
        if (followSignals() == Wish::end)
            break;
        rested_ = !line_.work() && rested_;
        restIfIdle();
        if (line_.hangup() == nullptr)
            continue;
        if (!absent())
            break;
        if (!plugIn(error))
            return false;
    }
    pty_.close();
    return true;
}

bool UsartFront::absent() {
    const std::optional<unsigned> replugMs = line_.hangup()->replugMs;
    pty_.drain();
    pty_.close();
    if (!replugMs || waitUnplugged(machine_.signals, *replugMs * millisecond) == Wish::end)
        return false;
    bootloader_.losePower(clockNow()); // the board has its power from the port
    line_.replug();
    return true;
}

Wish UsartFront::followSignals() {
    Wish wish = nextWish(machine_.signals);
    for (; wish == Wish::reset; wish = nextWish(machine_.signals)) {
        line_.forget();
        bootloader_.reset(clockNow());
    }
    return wish;
}

// Until something happens, or is due.
void UsartFront::wait() {
    struct pollfd fds[] = {{machine_.signals, POLLIN, 0}, {pty_.fd(), POLLIN, 0}, {pty_.watchFd(), POLLIN, 0}};
    std::optional<Nanoseconds> due = line_.due();
    if (!due && !rested_)
        due = line_.lastTraffic() + quiet;
    struct timespec left {};
    if (due)
        left = timespecOf(std::max<Nanoseconds>(*due - clockNow(), 0));
    ppoll(fds, 3, due ? &left : nullptr, nullptr);
}

void UsartFront::restIfIdle() {
    if (!rested_ && !line_.due() && clockNow() - line_.lastTraffic() >= quiet) {
        rested_ = true;
        machine_.idle();
    }
}

bool serveUsart(Machine &machine, const std::string &path, std::string &error) {
    UsartFront front(machine, path);
    return front.serve(error);
}

} // namespace sim
