#pragma once

#include <string>

#include <sys/types.h>

#include "libs/zvbl/Status.h"
#include "libs/zvbl/Trace.h"

namespace zvbl {

// Whether a port name is a path: it starts with "/", "./" or "../".
bool isPath(const std::string &portName);

// "i2c-1" is /dev/i2c-1; a path stays what it is.
std::string devicePath(const std::string &portName);

// A device node that is driven by ioctl alone. It is closed by its destruction.
//
// While it is open it carries an exclusive flock. That is advisory: bus scanners and the kernel's own
// drivers, with which a bus is rightly shared, are not kept out; another programmer is, whatever address
// it is about to name, for two of them would throw away each other's answers.
class DeviceNode {
public:
    explicit DeviceNode(Trace &trace) : m_trace(trace) {}
    ~DeviceNode();
    DeviceNode(const DeviceNode &) = delete;
    DeviceNode &operator=(const DeviceNode &) = delete;

    Status open(const std::string &portName); // cantOpen: absent, busy or forbidden
    Status refuse(const std::string &why);    // closes what was opened wrongly: cantOpen

    // As the system call, false for -1.
    bool control(unsigned long request, void *argument) const;

    // Whether the path still leads to what was opened: an adapter that is unplugged takes its node along,
    // while its driver may go on answering errors that sound like those of the bus.
    bool isThere() const;

private:
    Trace &m_trace;
    std::string m_path;
    int m_fd = -1;
    dev_t m_device = 0; // of the node's file, with its number there: a node that came back is another one
    ino_t m_number = 0;
};

} // namespace zvbl
