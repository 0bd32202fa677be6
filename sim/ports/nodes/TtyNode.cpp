#include "sim/ports/nodes/TtyNode.h"

#include <cerrno>

#include <linux/serial.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "sim/bootloader/Board.h"
#include "sim/ports/Clock.h"
#include "sim/ports/nodes/NodePort.h"
#include "sim/ports/pty/TerminalLine.h"

namespace sim {

namespace {

constexpr int controlLines = TIOCM_DTR | TIOCM_RTS;

class TtyNode : public NodePort {
public:
    TtyNode(const Machine &machine, std::string name)
        : NodePort(std::move(name)), bootloader_(machine.chip, machine.faults, machine.log),
          board_(machine.wiring, bootloader_, machine.log, clockNow()),
          line_(pty_, machine.pace, bootloader_, machine.faults, machine.log) {
        pty_.tellUse([this](bool used) { follow(used); });
    }

    bool addDevice(std::string &error) override;
    void unplug() override;
    void reset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;
    void workByItself(Nanoseconds now) override;
    std::optional<Nanoseconds> due(Nanoseconds now) override { return line_.due(now); }
    std::vector<int> fds() const override;

private:
    std::string devicePath() const { return "/devices/platform/zv32/tty/" + name(); }
    std::string nodePath() const { return "/dev/" + name(); }
    void follow(bool used);
    void setLines(int lines);
    int lines() const { return (board_.dtr() ? TIOCM_DTR : 0) | (board_.rts() ? TIOCM_RTS : 0); }
    std::optional<DeviceAnswer> serve(DeviceCall &call);
    DeviceAnswer moveLines(unsigned long request, const ClientMemory &argument);
    DeviceAnswer driverSettings(unsigned long request, const ClientMemory &argument);

    Bootloader bootloader_;
    Board board_;
    Pty pty_;
    TerminalLine line_;
    int flags_ = 0; // ASYNC_...
};

// The node becomes a link to a terminal of our own. One that umockdev makes stays open when the device is
// removed, so that nobody would see it gone.
bool TtyNode::addDevice(std::string &error) {
    const std::string description = "P: " + devicePath() + "\nN: " + name() + "=00\nE: DEVNAME=" + nodePath() +
                                    "\nE: SUBSYSTEM=tty\nE: MAJOR=188\nE: MINOR=0\n\n";
    const std::string node = testbed().root() + nodePath();
    if (!testbed().add(description, error))
        return false;
    unlink(node.c_str());
    if (!pty_.open(node, error))
        return false;
    pty_.hangUpOnClose();
    return testbed().attach(
        nodePath(), [this](DeviceCall &call) { return serve(call); }, error);
}

std::vector<int> TtyNode::fds() const {
    std::vector<int> fds = NodePort::fds();
    fds.insert(fds.end(), {pty_.fd(), pty_.watchFd()});
    return fds;
}

void TtyNode::unplug() {
    testbed().remove(devicePath(), {});
    pty_.close();
}

void TtyNode::reset(Nanoseconds now) {
    line_.forget();
    board_.button(now);
}

void TtyNode::losePower(Nanoseconds now) {
    board_.losePower(now);
    line_.replug();
}

void TtyNode::workByItself(Nanoseconds) {
    if (line_.work())
        traffic();
    if (const std::optional<Hangup> unplugged = line_.hangup()) {
        pty_.drain();
        hangUp(*unplugged);
    }
}

// The driver raises the lines for the first who opens the port. Behind the last it lowers them unless told
// not to, and forgets that it was.
void TtyNode::follow(bool used) {
    if (used) {
        setLines(controlLines);
        return;
    }
    if (pty_.hangsUpOnClose())
        setLines(0);
    pty_.hangUpOnClose();
}

void TtyNode::setLines(int lines) {
    board_.setLines((lines & TIOCM_DTR) != 0, (lines & TIOCM_RTS) != 0, clockNow());
    if (board_.held())
        line_.forget();
}

// What the client did before this call has happened.
std::optional<DeviceAnswer> TtyNode::serve(DeviceCall &call) {
    workByItself(clockNow());
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

DeviceAnswer TtyNode::moveLines(unsigned long request, const ClientMemory &argument) {
    if (!argument)
        return DeviceAnswer::fail(EFAULT);
    const int bits = argument.get<int>() & controlLines;
    if (request == TIOCMGET)
        argument.set(lines());
    else
        setLines(request == TIOCMSET ? bits : request == TIOCMBIS ? lines() | bits : lines() & ~bits);
    return {};
}

DeviceAnswer TtyNode::driverSettings(unsigned long request, const ClientMemory &argument) {
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

std::unique_ptr<Port> makeTtyNode(const Machine &machine, const std::string &node, std::string &) {
    return std::make_unique<Whole<TtyNode>>(machine, node);
}

} // namespace sim
