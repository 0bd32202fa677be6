#include "libs/zvbl/transport/DeviceNode.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "libs/zvbl/Text.h"

namespace zvbl {

bool isPath(const std::string &portName) {
    return portName.rfind('/', 0) == 0 || portName.rfind("./", 0) == 0 || portName.rfind("../", 0) == 0;
}

std::string devicePath(const std::string &portName) {
    return isPath(portName) ? portName : "/dev/" + portName;
}

DeviceNode::~DeviceNode() {
    if (m_fd < 0)
        return;
    ::close(m_fd);
    m_trace.remark("closed");
}

Status DeviceNode::open(const std::string &portName) {
    if (portName.empty())
        return Status::cantOpen;
    m_path = devicePath(portName);
    struct stat node {};
    // O_NONBLOCK and O_NOCTTY: the name may be that of anything.
    m_fd = ::open(m_path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (m_fd < 0 || flock(m_fd, LOCK_EX | LOCK_NB) != 0 || stat(m_path.c_str(), &node) != 0)
        return refuse(errorText(errno));
    m_device = node.st_dev;
    m_number = node.st_ino;
    return Status::ok;
}

Status DeviceNode::refuse(const std::string &why) {
    m_trace.remark("cannot open: " + why);
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    return Status::cantOpen;
}

bool DeviceNode::control(unsigned long request, void *argument) const {
    return ioctl(m_fd, request, argument) >= 0;
}

bool DeviceNode::isThere() const {
    struct stat node {};
    return stat(m_path.c_str(), &node) == 0 && node.st_dev == m_device && node.st_ino == m_number;
}

} // namespace zvbl
