#include "sim/ports/nodes/TtyFront.h"

#include <cerrno>

#include <linux/serial.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "sim/bootloader/Board.h"
#include "sim/ports/Clock.h"
#include "sim/ports/nodes/Serve.h"
#include "sim/ports/pty/TerminalLine.h"
#include "sim/program/Options.h"

namespace sim {

namespace {

constexpr int controlLines = TIOCM_DTR | TIOCM_RTS;

class TtyPort : public Device {
public:
    TtyPort(Machine &machine, std::string name)
        : name_(std::move(name)), bootloader_(machine.chip, machine.faults, machine.log),
          board_(machine.options.wiring, bootloader_, machine.log, clockNow()),
          line_(pty_, machine.options.pace, bootloader_, machine.faults, machine.log),
          events_(epoll_create1(EPOLL_CLOEXEC)) {
        pty_.tellUse([this](bool used) { follow(used); });
    }
    ~TtyPort() override { close(events_); }

    std::string node() const override { return name_; }
    bool plugIn(DeviceLoop &loop, std::string &error) override;
    void unplug(DeviceLoop &loop) override;
    void reset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;
    void work(Nanoseconds now) override;
    std::optional<Nanoseconds> due() const override { return line_.due(); }
    int fd() const override { return events_; }

private:
    std::string devicePath() const { return "/devices/platform/zv32/tty/" + name_; }
    std::string nodePath() const { return "/dev/" + name_; }
    void follow(bool used);
    void setLines(int lines);
    int lines() const { return (board_.dtr() ? TIOCM_DTR : 0) | (board_.rts() ? TIOCM_RTS : 0); }
    std::optional<DeviceAnswer> serve(DeviceCall &call);
    DeviceAnswer moveLines(unsigned long request, const ClientMemory &argument);
    DeviceAnswer driverSettings(unsigned long request, const ClientMemory &argument);

    std::string name_;
    Bootloader bootloader_;
    Board board_;
    Pty pty_;
    TerminalLine line_;
    int events_;    // of the terminal and its clients
    int flags_ = 0; // ASYNC_...
    DeviceLoop *loop_ = nullptr;
};

// The node becomes a link to a terminal of our own. One that umockdev makes stays open when the device is
// removed, so that nobody would see it gone.
bool TtyPort::plugIn(DeviceLoop &loop, std::string &error) {
    loop_ = &loop;
    const std::string description = "P: " + devicePath() + "\nN: " + name_ + "=00\nE: DEVNAME=" + nodePath() +
                                    "\nE: SUBSYSTEM=tty\nE: MAJOR=188\nE: MINOR=0\n\n";
    const std::string node = loop.testbed().root() + nodePath();
    if (!loop.testbed().add(description, error))
        return false;
    unlink(node.c_str());
    if (!pty_.open(node, error))
        return false;
    pty_.hangUpOnClose();
    for (int fd : {pty_.fd(), pty_.watchFd()}) {
        struct epoll_event event = {EPOLLIN, {}};
        epoll_ctl(events_, EPOLL_CTL_ADD, fd, &event);
    }
    return loop.testbed().attach(
        nodePath(), [this](DeviceCall &call) { return serve(call); }, error);
}

void TtyPort::unplug(DeviceLoop &loop) {
    loop.testbed().remove(devicePath(), {});
    pty_.close();
}

void TtyPort::reset(Nanoseconds now) {
    line_.forget();
    board_.button(now);
}

void TtyPort::losePower(Nanoseconds now) {
    board_.losePower(now);
    line_.replug();
}

void TtyPort::work(Nanoseconds) {
    if (line_.work())
        loop_->traffic();
    if (line_.hangup() != nullptr) {
        pty_.drain();
        loop_->hangUp(line_.hangup()->replugMs);
    }
}

// The driver raises the lines for the first who opens the port. Behind the last it lowers them unless told
// not to, and forgets that it was.
void TtyPort::follow(bool used) {
    if (used) {
        setLines(controlLines);
        return;
    }
    if (pty_.hangsUpOnClose())
        setLines(0);
    pty_.hangUpOnClose();
}

void TtyPort::setLines(int lines) {
    board_.setLines((lines & TIOCM_DTR) != 0, (lines & TIOCM_RTS) != 0, clockNow());
    if (board_.held())
        line_.forget();
}

// What the client did before this call has happened.
std::optional<DeviceAnswer> TtyPort::serve(DeviceCall &call) {
    work(clockNow());
    if (call.kind != DeviceCall::Kind::ioctl)
        return std::nullopt;
    switch (call.request()) {
    case TIOCMGET:
    case TIOCMSET:
    case TIOCMBIS:
    case TIOCMBIC: return moveLines(call.request(), call.memory(sizeof(int)));
    case TIOCGSERIAL:
    case TIOCSSERIAL: return driverSettings(call.request(), call.memory(sizeof(serial_struct)));
    default: return call.execute();
    }
}

DeviceAnswer TtyPort::moveLines(unsigned long request, const ClientMemory &argument) {
    if (!argument)
        return DeviceAnswer::fail(EFAULT);
    const int bits = argument.get<int>() & controlLines;
    if (request == TIOCMGET)
        argument.set(lines());
    else
        setLines(request == TIOCMSET ? bits : request == TIOCMBIS ? lines() | bits : lines() & ~bits);
    return {};
}

DeviceAnswer TtyPort::driverSettings(unsigned long request, const ClientMemory &argument) {
    if (!argument)
        return DeviceAnswer::fail(EFAULT);
    if (request == TIOCGSERIAL) {
        serial_struct settings{};
        settings.flags = flags_;
        argument.set(settings);
    } else {
        flags_ = argument.get<serial_struct>().flags;
    }
    return {};
}

} // namespace

bool serveTty(Machine &machine, const std::string &node, std::string &error) {
    TtyPort port(machine, node);
    return serveDevice(machine, port, error);
}

} // namespace sim
