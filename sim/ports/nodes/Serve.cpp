#include "sim/ports/nodes/Serve.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "sim/ports/Clock.h"

namespace sim {

namespace {
constexpr Nanoseconds quiet = 20 * millisecond; // the device rests: time for the state file
}

DeviceLoop::DeviceLoop(Machine &machine, Device &device)
    : machine_(machine), device_(device), wake_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

DeviceLoop::~DeviceLoop() {
    close(wake_);
}

void DeviceLoop::wake() {
    eventfd_write(wake_, 1);
}

void DeviceLoop::traffic() {
    lastTraffic_ = clockNow();
    if (rested_) {
        rested_ = false;
        wake();
    }
}

void DeviceLoop::ready() {
    std::printf("ready %s %s\n", device_.node().c_str(), testbed_.root().c_str());
    std::fflush(stdout);
}

void DeviceLoop::end() {
    ended_ = true;
    wake();
}

void DeviceLoop::hangUp(std::optional<unsigned> replugMs) {
    testbed_.cutOff();
    replugMs_ = replugMs;
    ended_ = !replugMs;
    wake();
}

bool DeviceLoop::plugIn(std::string &error) {
    const std::unique_lock<std::mutex> lock = testbed_.lock();
    plugged_ = device_.plugIn(*this, error);
    if (plugged_)
        ready();
    return plugged_;
}

bool DeviceLoop::serve(std::string &error) {
    bool good = plugIn(error);
    while (good) {
        wait();
        const Turn next = turn();
        if (next == Turn::end || (next == Turn::absent && stayAway() == Wish::end))
            break;
        good = next != Turn::absent || plugIn(error);
    }
    leave();
    return good;
}

// Unplugged by a fault.
Wish DeviceLoop::stayAway() {
    Nanoseconds time = 0;
    {
        const std::unique_lock<std::mutex> lock = testbed_.lock();
        device_.unplug(*this);
        plugged_ = false;
        time = *replugMs_ * millisecond;
    }
    const Wish wish = waitUnplugged(machine_.signals, time);
    const std::unique_lock<std::mutex> lock = testbed_.lock();
    replugMs_.reset();
    device_.losePower(clockNow()); // the board has its power from the port
    return wish;
}

// Who still has the device open is told that it is gone, and gets a moment to notice.
void DeviceLoop::leave() {
    {
        const std::unique_lock<std::mutex> lock = testbed_.lock();
        if (plugged_)
            device_.unplug(*this);
        machine_.idle();
    }
    testbed_.awaitClients();
}

// Until something happens, or is due.
void DeviceLoop::wait() {
    std::optional<Nanoseconds> due;
    int fd = -1;
    {
        const std::unique_lock<std::mutex> lock = testbed_.lock();
        due = device_.due();
        fd = device_.fd();
        if (!rested_)
            due = std::min(due.value_or(lastTraffic_ + quiet), lastTraffic_ + quiet);
    }
    struct pollfd fds[] = {{machine_.signals, POLLIN, 0}, {wake_, POLLIN, 0}, {fd, POLLIN, 0}};
    struct timespec left {};
    if (due)
        left = timespecOf(std::max<Nanoseconds>(*due - clockNow(), 0));
    ppoll(fds, 3, due ? &left : nullptr, nullptr);
    eventfd_t turns = 0;
    eventfd_read(wake_, &turns);
}

DeviceLoop::Turn DeviceLoop::turn() {
    const std::unique_lock<std::mutex> lock = testbed_.lock();
    Wish wish = nextWish(machine_.signals);
    for (; wish == Wish::reset; wish = nextWish(machine_.signals))
        device_.reset(clockNow());
    if (wish != Wish::end && !ended_ && !replugMs_)
        device_.work(clockNow());
    restIfIdle();
    if (wish == Wish::end || ended_)
        return Turn::end;
    return replugMs_ ? Turn::absent : Turn::goOn;
}

void DeviceLoop::restIfIdle() {
    if (!rested_ && clockNow() - lastTraffic_ >= quiet) {
        rested_ = true;
        machine_.idle();
    }
}

bool serveDevice(Machine &machine, Device &device, std::string &error) {
    prctl(PR_SET_TIMERSLACK, 1UL); // the testbed's thread gets it too: calls are answered to the microsecond
    try {
        DeviceLoop loop(machine, device);
        return loop.serve(error);
    } catch (const std::runtime_error &failure) {
        error = failure.what();
        return false;
    }
}

} // namespace sim
