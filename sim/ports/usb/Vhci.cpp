#include "sim/ports/usb/Vhci.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <glob.h>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "sim/ports/Clock.h"

namespace sim {

namespace {

constexpr unsigned freePort = 4;                   // VDEV_ST_NULL
constexpr unsigned deviceId = 1 << 16 | 2;         // where it was taken from: a bus and a device there. Anything.
constexpr Nanoseconds longestRelease = 2 * second; // the kernel frees a port some time after its unplugging

std::string firstLine(const std::string &path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

std::vector<std::string> matches(const std::string &pattern) {
    std::vector<std::string> paths;
    glob_t found{};
    if (glob(pattern.c_str(), 0, nullptr, &found) == 0)
        paths.assign(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    globfree(&found);
    return paths;
}

std::string nodeIfThere(const std::string &path) {
    return access(path.c_str(), F_OK) == 0 ? path : "";
}

} // namespace

std::string Vhci::controller() const {
    return m_places.sysfs + "/devices/platform/vhci_hcd.0";
}

bool Vhci::choosePort(std::string &error) {
    std::ifstream status(controller() + "/status");
    error = "the kernel has no vhci_hcd: modprobe vhci-hcd";
    for (std::string line; m_port < 0 && std::getline(status, line);) {
        int port = 0;
        unsigned state = 0;
        error = "no port of vhci_hcd is free";
        if (std::sscanf(line.c_str(), "hs %d %u", &port, &state) == 2 && state == freePort)
            m_port = port;
    }
    return m_port >= 0;
}

// Gives the other end to the kernel.
bool Vhci::hand(int fd, UsbSpeed speed, std::string &error) const {
    const std::string words = std::to_string(m_port) + " " + std::to_string(fd) + " " + std::to_string(deviceId) + " " +
                              std::to_string(static_cast<int>(speed));
    const int attach = open((controller() + "/attach").c_str(), O_WRONLY | O_CLOEXEC);
    const Nanoseconds end = clockNow() + longestRelease;
    bool done = false;
    while (attach >= 0 && !(done = write(attach, words.data(), words.size()) >= 0) && errno == EBUSY &&
           clockNow() < end)
        poll(nullptr, 0, 1);
    if (!done)
        error = std::string("cannot plug a device into vhci_hcd: ") + std::strerror(errno) +
                (errno == EACCES ? "; that takes root" : "");
    close(attach);
    return done;
}

bool Vhci::plugIn(UsbSpeed speed, std::string &error) {
    int ends[2];
    if (m_port < 0 && !choosePort(error))
        return false;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        error = std::string("cannot make a socket: ") + std::strerror(errno);
        return false;
    }
    m_fd = ends[0];
    const bool done = hand(ends[1], speed, error);
    close(ends[1]);
    if (!done)
        unplug();
    return done;
}

void Vhci::unplug() {
    if (m_fd >= 0)
        close(std::exchange(m_fd, -1));
}

// The hub of 480 Mbit/s has the ports for all devices up to that.
std::string Vhci::directory() const {
    for (const std::string &hub : matches(controller() + "/usb*")) {
        if (firstLine(hub + "/speed") == "480") {
            const std::string bus = hub.substr(hub.rfind("usb") + 3);
            return hub + "/" + bus + "-" + std::to_string(m_port + 1);
        }
    }
    return "";
}

std::string Vhci::node(const std::string &pattern) const {
    const std::string device = directory();
    if (!pattern.empty()) {
        const std::vector<std::string> found = matches(device + "/" + pattern);
        return found.empty() ? "" : nodeIfThere(m_places.nodes + "/" + found[0].substr(found[0].rfind('/') + 1));
    }
    unsigned bus = 0;
    unsigned number = 0;
    if (matches(device + "/*:*/bInterfaceNumber").empty() ||
        std::sscanf(firstLine(device + "/busnum").c_str(), "%u", &bus) != 1 ||
        std::sscanf(firstLine(device + "/devnum").c_str(), "%u", &number) != 1)
        return "";
    char path[64];
    std::snprintf(path, sizeof path, "/bus/usb/%03u/%03u", bus, number);
    return nodeIfThere(m_places.nodes + path);
}

} // namespace sim
