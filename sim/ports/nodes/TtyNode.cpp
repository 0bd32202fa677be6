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
        : NodePort(std::move(name)), m_bootloader(machine.chip, machine.faults, machine.log),
          m_board(machine.wiring, m_bootloader, machine.log, clockNow()),
          m_line(m_pty, machine.pace, m_bootloader, machine.faults, machine.log) {
        m_pty.tellUse([this](bool used) { follow(used); });
    }

    bool addDevice(std::string &error) override;
    void unplug() override;
    void reset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;
    void workByItself(Nanoseconds now) override;
    std::optional<Nanoseconds> due(Nanoseconds) override { return m_line.due(); }
    std::vector<int> fds() const override;

private:
    std::string devicePath() const { return "/devices/platform/zv32/tty/" + name(); }
    std::string nodePath() const { return "/dev/" + name(); }
    void follow(bool used);
    void setLines(int lines);
    int lines() const { return (m_board.dtr() ? TIOCM_DTR : 0) | (m_board.rts() ? TIOCM_RTS : 0); }
    std::optional<DeviceAnswer> serve(DeviceCall &call);
    DeviceAnswer moveLines(unsigned long request, const ClientMemory &argument);
    DeviceAnswer driverSettings(unsigned long request, const ClientMemory &argument);

    Bootloader m_bootloader;
    Board m_board;
    Pty m_pty;
    TerminalLine m_line;
    int m_flags = 0; // ASYNC_...
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
    if (!m_pty.open(node, error))
        return false;
    m_pty.hangUpOnClose();
    return testbed().attach(
        nodePath(), [this](DeviceCall &call) { return serve(call); }, error);
}

std::vector<int> TtyNode::fds() const {
    std::vector<int> fds = NodePort::fds();
    fds.insert(fds.end(), {m_pty.fd(), m_pty.watchFd()});
    return fds;
}

void TtyNode::unplug() {
    testbed().remove(devicePath(), {});
    m_pty.close();
}

void TtyNode::reset(Nanoseconds now) {
    m_line.forget();
    m_board.button(now);
}

void TtyNode::losePower(Nanoseconds now) {
    m_board.losePower(now);
    m_line.replug();
}

void TtyNode::workByItself(Nanoseconds) {
    if (m_line.work())
        traffic();
    if (const std::optional<Hangup> unplugged = m_line.hangup()) {
        m_pty.drain();
        hangUp(*unplugged);
    }
}

// The driver raises the lines for the first who opens the port. After the last it lowers them unless told
// not to, and forgets that it was.
void TtyNode::follow(bool used) {
    if (used) {
        setLines(controlLines);
        return;
    }
    if (m_pty.hangsUpOnClose())
        setLines(0);
    m_pty.hangUpOnClose();
}

void TtyNode::setLines(int lines) {
    m_board.setLines((lines & TIOCM_DTR) != 0, (lines & TIOCM_RTS) != 0, clockNow());
    if (m_board.held())
        m_line.forget();
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
        settings.flags = m_flags;
        argument.set(settings);
    } else {
        m_flags = argument.get<serial_struct>().flags;
    }
    return {};
}

} // namespace

std::unique_ptr<Port> makeTtyNode(const Machine &machine, const std::string &node, std::string &) {
    return std::make_unique<Whole<TtyNode>>(machine, node);
}

} // namespace sim
