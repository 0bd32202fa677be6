#include "sim/fronts/UsartFront.h"

#include "sim/Clock.h"
#include "sim/Options.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <poll.h>
#include <sys/prctl.h>

namespace sim {

namespace {

constexpr Nanoseconds quiet = 20 * millisecond; // the line rests: time for the state file

// At a pace every wake-up from sleep would add its latency to the line. So this close before a byte is
// due, and this long behind one, when the host is about to go on, the front stays awake.
constexpr Nanoseconds awakeBefore = 100 * microsecond;
constexpr Nanoseconds awakeBehind = 300 * microsecond;

} // namespace

UsartFront::UsartFront(std::string path, bool pace, Bootloader &bootloader, Faults &faults, Log &log,
                       std::function<void()> idle)
    : path_(std::move(path)), pace_(pace), bootloader_(bootloader), log_(log), idle_(std::move(idle)),
      protocol_(bootloader), line_(protocol_, faults) {
    prctl(PR_SET_TIMERSLACK, 1UL); // bytes are due to the microsecond
}

bool UsartFront::plugIn(std::string &error) {
    if (!pty_.open(path_, error)) {
        return false;
    }
    std::printf("ready %s\n", path_.c_str());
    std::fflush(stdout);
    return true;
}

bool UsartFront::serve(int signals, std::string &error) {
    if (!plugIn(error)) {
        return false;
    }
    for (;;) {
        wait(signals);
        if (followSignals(signals) == Wish::end) {
            break;
        }
        takeFromHost();
        pty_.followClients(clockNow());
        giveToHost();
        restIfIdle();
        if (!line_.hangup() || !line_.toHost().empty()) {
            continue;
        }
        const std::optional<unsigned> replugMs = line_.hangup()->replugMs;
        pty_.drain();
        pty_.close();
        if (!replugMs || waitUnplugged(signals, *replugMs * millisecond) == Wish::end) {
            break;
        }
        // The board has its power from the port.
        bootloader_.losePower(clockNow());
        line_.replug();
        if (!plugIn(error)) {
            return false;
        }
    }
    pty_.close();
    return true;
}

Wish UsartFront::followSignals(int signals) {
    Wish wish = nextWish(signals);
    for (; wish == Wish::reset; wish = nextWish(signals)) {
        line_.toHost().clear();
        bootloader_.reset(clockNow());
    }
    return wish;
}

// Until something happens, or is due.
void UsartFront::wait(int signals) {
    struct pollfd fds[] = {{signals, POLLIN, 0}, {pty_.fd(), POLLIN, 0}, {pty_.watchFd(), POLLIN, 0}};
    const Nanoseconds now = clockNow();
    std::optional<Nanoseconds> due;
    if (!line_.toHost().empty()) {
        due = line_.toHost().front().at - (pace_ ? awakeBefore : 0);
    } else if (pace_ && now - lastTraffic_ < awakeBehind) {
        due = now;
    } else if (!rested_) {
        due = lastTraffic_ + quiet;
    }
    struct timespec left {};
    if (due) {
        left = timespecOf(std::max<Nanoseconds>(*due - now, 0));
    }
    ppoll(fds, 3, due ? &left : nullptr, nullptr);
}

void UsartFront::takeFromHost() {
    std::uint8_t bytes[4096];
    const Nanoseconds now = clockNow();
    const std::size_t length = pty_.read(bytes, sizeof bytes, now);
    if (length == 0) {
        return;
    }
    lastTraffic_ = now;
    rested_ = false;
    const unsigned baud = pace_ ? pty_.baud() : 0;
    for (std::size_t i = 0; i < length; ++i) {
        line_.fromHost(bytes[i], now, baud);
    }
}

void UsartFront::giveToHost() {
    std::deque<TimedByte> &queue = line_.toHost();
    const Nanoseconds now = clockNow();
    Bytes due;
    while (!queue.empty() && queue.front().at <= now) {
        due.push_back(queue.front().byte);
        queue.pop_front();
    }
    if (due.empty()) {
        return;
    }
    lastTraffic_ = now;
    rested_ = false;
    if (!pty_.write(due)) {
        log_.note("bytes for the host were lost: nobody reads");
    }
}

void UsartFront::restIfIdle() {
    if (!rested_ && line_.toHost().empty() && clockNow() - lastTraffic_ >= quiet) {
        rested_ = true;
        idle_();
    }
}

bool serveUsart(Machine &machine, const std::string &path, std::string &error) {
    Bootloader bootloader(machine.chip, machine.faults, machine.log);
    UsartFront front(path, machine.options.pace, bootloader, machine.faults, machine.log, machine.idle);
    return front.serve(machine.signals, error);
}

} // namespace sim
