#include "look/doctor/CanChecks.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <linux/can/error.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int canSocket() {
    return socket(AF_CAN, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, CAN_RAW);
}

bool any(const std::vector<can_frame> &errors, canid_t flag, unsigned detail = 0) {
    return std::any_of(errors.begin(), errors.end(), [=](const can_frame &frame) {
        return (frame.can_id & flag) != 0 && (detail == 0 || (frame.data[1] & detail) != 0);
    });
}

} // namespace

CanInterface canInterface(const std::string &name) {
    CanInterface interface;
    const int descriptor = canSocket();
    if (descriptor < 0) {
        interface.socketError = errno;
        return interface;
    }
    ifreq request{};
    name.copy(request.ifr_name, sizeof request.ifr_name - 1);
    if (ioctl(descriptor, SIOCGIFFLAGS, &request) != 0)
        interface.lookError = errno;
    const auto flags = static_cast<unsigned>(request.ifr_flags);
    interface.isUp = interface.lookError == 0 && (flags & IFF_UP) != 0;
    interface.isRunning = interface.isUp && (flags & IFF_RUNNING) != 0;
    close(descriptor);
    return interface;
}

bool judgeInterface(const std::string &name, const CanInterface &interface, Diagnosis &diagnosis) {
    if (interface.socketError != 0)
        diagnosis.found(Cause::canMissing, std::string("no CAN socket: ") + std::strerror(interface.socketError));
    else if (interface.lookError != 0)
        diagnosis.found(Cause::noPort, name + ": " + std::strerror(interface.lookError));
    else if (!interface.isUp)
        diagnosis.found(Cause::canDown, "it is down", {name});
    else if (!interface.isRunning)
        diagnosis.found(Cause::canBusOff, "it is up, and its controller is off the bus", {name});
    else
        diagnosis.good("interface", "up");
    return interface.isRunning;
}

CanErrors::CanErrors(const std::string &name) : m_socket(canSocket()) {
    if (m_socket < 0)
        return;
    const can_err_mask_t errors = CAN_ERR_ACK | CAN_ERR_CRTL | CAN_ERR_BUSOFF | CAN_ERR_TX_TIMEOUT;
    setsockopt(m_socket, SOL_CAN_RAW, CAN_RAW_FILTER, nullptr, 0);
    setsockopt(m_socket, SOL_CAN_RAW, CAN_RAW_ERR_FILTER, &errors, sizeof errors);
    sockaddr_can address{};
    address.can_family = AF_CAN;
    address.can_ifindex = static_cast<int>(if_nametoindex(name.c_str()));
    if (bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
        return;
    close(m_socket);
    m_socket = -1;
}

CanErrors::~CanErrors() {
    if (m_socket >= 0)
        close(m_socket);
}

std::vector<can_frame> CanErrors::heard() const {
    std::vector<can_frame> frames;
    can_frame frame{};
    while (m_socket >= 0 && recv(m_socket, &frame, sizeof frame, 0) == static_cast<ssize_t>(sizeof frame))
        if ((frame.can_id & CAN_ERR_FLAG) != 0)
            frames.push_back(frame);
    return frames;
}

void judgeSilence(const std::string &name, const std::vector<can_frame> &errors, Diagnosis &diagnosis) {
    if (any(errors, CAN_ERR_BUSOFF))
        diagnosis.found(Cause::canBusOff, "the controller left the bus", {name});
    else if (any(errors, CAN_ERR_ACK))
        diagnosis.found(Cause::canNotAcknowledged, "nobody acknowledges");
    else if (any(errors, CAN_ERR_CRTL, CAN_ERR_CRTL_TX_WARNING | CAN_ERR_CRTL_TX_PASSIVE) ||
             any(errors, CAN_ERR_TX_TIMEOUT))
        diagnosis.found(Cause::canNotAcknowledged, "what is sent ends in errors");
    else
        diagnosis.found(Cause::silence, "no frame came back");
}
