#include "libs/zvbl/transport/SerialPort.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "libs/zvbl/Text.h"
#include "libs/zvbl/transport/DeviceNode.h"
#include "libs/zvbl/transport/SerialLine.h"

namespace zvbl {
namespace {

constexpr std::size_t readSize = 4096;
constexpr auto longestPoll = std::chrono::hours(1);
// Below this a wait looks again and again: the kernel would round it up by about as much.
constexpr auto shortWait = std::chrono::microseconds(300);

std::string describe(const LinkSettings &settings) {
    std::string stop = std::to_string(settings.stopBits);
    stop.erase(stop.find_last_not_of('0') + 1);
    if (stop.back() == '.')
        stop.pop_back();
    return std::to_string(settings.baud) + " " + std::to_string(settings.dataBits) + "NOE"[settings.parity] + stop;
}

} // namespace

bool isSerialSetting(const LinkSettings &settings) {
    const float stop = settings.stopBits;
    return settings.baud > 0 && settings.dataBits >= 5 && settings.dataBits <= 8 && settings.parity >= 0 &&
           settings.parity <= 2 && (stop == 1.0F || stop == 1.5F || stop == 2.0F);
}

SerialPort::~SerialPort() {
    if (m_fd < 0)
        return;
    flushSerialLine(m_fd); // else the close would wait until all is sent
    ioctl(m_fd, TIOCNXCL);
    ::close(m_fd);
    m_trace.remark("closed");
}

Status SerialPort::open(const LinkSettings &settings) {
    if (settings.portName.empty())
        return Status::cantOpen;
    if (const Status status = take(devicePath(settings.portName)); status != Status::ok)
        return status;
    if (const Status status = reconfigure(settings); status != Status::ok)
        return status;
    askForLowLatency(m_fd);
    // Most drivers raise the control lines at the open, some leave them: the same on all from here on.
    const int lines = TIOCM_DTR | TIOCM_RTS;
    ioctl(m_fd, TIOCMBIS, &lines);
    flushSerialLine(m_fd);
    return Status::ok;
}

// Opens the port and makes it ours: flock stops other programmers, TIOCEXCL everybody but root.
Status SerialPort::take(const std::string &path) {
    m_fd = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (m_fd < 0 || !isatty(m_fd) || flock(m_fd, LOCK_EX | LOCK_NB) != 0) {
        m_trace.remark("cannot open: " + errorText(errno));
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
        return Status::cantOpen;
    }
    ioctl(m_fd, TIOCEXCL);
    return Status::ok;
}

Status SerialPort::reconfigure(const LinkSettings &settings) {
    if (!setSerialLine(m_fd, settings)) {
        const bool refused = errno == EINVAL;
        m_trace.remark("the driver refuses " + describe(settings) + ": " + errorText(errno));
        return refused ? Status::badArgument : Status::cantOpen;
    }
    m_characterTime = serialCharacterTime(settings);
    m_trace.remark("open " + describe(settings));
    return Status::ok;
}

Status SerialPort::setLine(ControlLine line, bool high) {
    const int bit = line == ControlLine::dtr ? TIOCM_DTR : TIOCM_RTS;
    const std::string name = line == ControlLine::dtr ? "DTR" : "RTS";
    if (ioctl(m_fd, high ? TIOCMBIS : TIOCMBIC, &bit) != 0)
        return fail("no line " + name + ": " + errorText(errno));
    m_trace.remark(name + (high ? " high" : " low"));
    return Status::ok;
}

Status SerialPort::send(const Bytes &bytes, TimePoint deadline) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(m_fd, bytes.data() + done, bytes.size() - done);
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (count == 0 || errno == EAGAIN) {
            const Status status = waitFor(POLLOUT, deadline);
            if (status == Status::noAnswer)
                return fail("cannot send in time");
            if (status != Status::ok)
                return status;
        } else if (errno != EINTR) {
            return fail("cannot send: " + errorText(errno));
        }
    }
    return Status::ok;
}

Status SerialPort::receive(Bytes &bytes, TimePoint deadline) {
    std::uint8_t buffer[readSize];
    for (;;) {
        const ssize_t count = ::read(m_fd, buffer, sizeof buffer);
        if (count > 0) {
            bytes.insert(bytes.end(), buffer, buffer + count);
            return Status::ok;
        }
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 0 || errno != EAGAIN)
            return fail("the device is gone");
        if (const Status status = waitFor(POLLIN, deadline); status != Status::ok)
            return status;
    }
}

Status SerialPort::waitFor(short events, TimePoint deadline) {
    for (;;) {
        const Duration left = deadline - Clock::now();
        if (left <= Duration::zero())
            return Status::noAnswer;
        const Duration wait = left < shortWait ? Duration::zero() : std::min<Duration>(left, longestPoll);
        const timespec time{wait.count() / 1000000000, wait.count() % 1000000000};
        pollfd port{m_fd, events, 0};
        const int ready = ppoll(&port, 1, &time, nullptr);
        if (ready < 0 && errno != EINTR)
            return fail("cannot wait");
        if (ready <= 0)
            continue;
        if (port.revents & events)
            return Status::ok; // what arrived before a hang-up can still be read; the read tells of the rest
        return fail("the device is gone");
    }
}

Status SerialPort::fail(const std::string &what) {
    m_trace.remark(what);
    return Status::gone;
}

} // namespace zvbl
