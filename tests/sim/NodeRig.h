#pragma once

#include <cerrno>
#include <memory>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "sim/ports/Clock.h"
#include "sim/ports/Port.h"
#include "tests/sim/Rig.h"

namespace sim {

// A file that is closed at the end.
class OpenFile {
public:
    explicit OpenFile(const std::string &path) : m_fd(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    ~OpenFile() { leave(); }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    int fd() const { return m_fd; }
    void leave() {
        if (m_fd >= 0)
            close(std::exchange(m_fd, -1));
    }

    // The errno of a call, 0 for none.
    int call(unsigned long request, void *argument) const { return ioctl(m_fd, request, argument) < 0 ? errno : 0; }
    int call(unsigned long request, unsigned long argument) const {
        return ioctl(m_fd, request, argument) < 0 ? errno : 0;
    }

private:
    int m_fd;
};

// A chip at emulated device nodes, which this process sees as its kernel's. It has to run under
// libumockdev-preload.so.0.
class NodeRig {
public:
    using Make = std::unique_ptr<Port> (*)(const Machine &machine, const std::string &name, std::string &error);

    NodeRig(Make make, const std::string &name, const std::vector<std::string> &faults = {}, bool pace = false,
            const Wiring &wiring = {}, unsigned beside = 0)
        : rig("ZV32F421_16K", faults), machine{rig.chip, rig.faults, rig.log,     wiring,     pace,
                                               0,        beside,     1024 * 1024, FlashTime{}},
          port(make(machine, name, error)) {
        if (!port || !port->plugIn(error))
            throw std::runtime_error(error);
    }

    // What the port's loop does at each turn.
    bool work() {
        const auto held = port->hold();
        return port->work(clockNow(), error);
    }
    bool hungUp() {
        const auto held = port->hold();
        return port->hangup().has_value();
    }

    Rig rig;
    std::string error;
    const Machine machine;
    const std::unique_ptr<Port> port;
};

} // namespace sim
