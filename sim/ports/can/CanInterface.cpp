#include "sim/ports/can/CanInterface.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <linux/can.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace sim {

namespace {

constexpr long lookAgain = 20 * millisecond; // for an interface that went away

void closeAndForget(int &fd) {
    if (fd >= 0)
        ::close(std::exchange(fd, -1));
}

CanFrame parse(const struct can_frame &raw) {
    CanFrame frame;
    frame.extended = (raw.can_id & CAN_EFF_FLAG) != 0;
    frame.remote = (raw.can_id & CAN_RTR_FLAG) != 0;
    frame.id = raw.can_id & (frame.extended ? CAN_EFF_MASK : CAN_SFF_MASK);
    frame.data.assign(raw.data, raw.data + std::min<unsigned>(raw.can_dlc, CAN_MAX_DLEN));
    return frame;
}

} // namespace

CanInterface::CanInterface(std::string interface, CanLine &bus, Log &log)
    : m_interface(std::move(interface)), m_bus(bus), m_log(log) {}

void CanInterface::close() {
    closeAndForget(m_socket);
    closeAndForget(m_timer);
}

bool CanInterface::open(std::string &error) {
    struct sockaddr_can address {};
    address.can_family = AF_CAN;
    address.can_ifindex = static_cast<int>(if_nametoindex(m_interface.c_str()));
    if (address.can_ifindex == 0) {
        error = "there is no interface \"" + m_interface + "\"";
        return false;
    }
    m_socket = socket(AF_CAN, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, CAN_RAW);
    if (m_socket < 0 || bind(m_socket, reinterpret_cast<struct sockaddr *>(&address), sizeof address) != 0) {
        error = "cannot use \"" + m_interface + "\" as a CAN interface: " + std::strerror(errno);
        closeAndForget(m_socket);
        return false;
    }
    return true;
}

// The chip stays, and looks for the interface from time to time.
void CanInterface::leave() {
    m_log.note("the interface has gone away");
    closeAndForget(m_socket);
    struct itimerspec time {};
    time.it_interval.tv_nsec = time.it_value.tv_nsec = lookAgain;
    m_timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
    timerfd_settime(m_timer, 0, &time, nullptr);
}

bool CanInterface::take(Nanoseconds now) {
    std::uint64_t ticks = 0;
    std::string error;
    if (m_timer >= 0 && ::read(m_timer, &ticks, sizeof ticks) > 0 && open(error)) {
        closeAndForget(m_timer);
        m_log.note("the interface is back");
    }
    bool something = false;
    for (CanFrame frame; read(frame); something = true)
        m_bus.fromHost(frame, now, 0);
    return something;
}

// One frame, if there is one.
bool CanInterface::read(CanFrame &frame) {
    struct can_frame raw {};
    while (m_socket >= 0) {
        const ssize_t length = ::read(m_socket, &raw, sizeof raw);
        if (length == CAN_MTU && (raw.can_id & CAN_ERR_FLAG) == 0) {
            frame = parse(raw);
            return true;
        }
        if (length < 0 && errno == EAGAIN)
            return false;
        if (length < 0 && errno != EINTR && errno != ENETDOWN)
            leave();
    }
    return false;
}

bool CanInterface::give(const TimedFrame &timed) {
    struct can_frame raw {};
    raw.can_id = timed.frame.id;
    raw.can_dlc = static_cast<__u8>(timed.frame.data.size());
    std::copy(timed.frame.data.begin(), timed.frame.data.end(), raw.data);
    if (m_socket >= 0 && ::write(m_socket, &raw, sizeof raw) == CAN_MTU)
        return true;
    if (m_socket >= 0 && (errno == ENOBUFS || errno == EAGAIN || errno == EINTR))
        return false; // the interface has its queue full
    m_log.note("frame " + nameOf(timed.frame) + " is lost: the interface is not up");
    return true;
}

} // namespace sim
