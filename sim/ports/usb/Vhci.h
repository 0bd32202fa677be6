#pragma once

#include <string>
#include <utility>

namespace sim {

// As the kernel counts them.
enum class UsbSpeed { full = 2, high = 3 };

// Where the kernel shows its devices.
struct UsbPlaces {
    std::string sysfs = "/sys";
    std::string nodes = "/dev";
};

// A port of vhci_hcd, the host controller of the Linux kernel whose devices are other processes. What is
// plugged in there is a USB device like any other to the kernel, its drivers and all programs. Takes the
// module vhci-hcd, and root.
class Vhci {
public:
    explicit Vhci(UsbPlaces places) : m_places(std::move(places)) {}
    ~Vhci() { unplug(); }
    Vhci(const Vhci &) = delete;
    Vhci &operator=(const Vhci &) = delete;

    // Takes a free port, and the same one again later. False and a message when it cannot.
    bool plugIn(UsbSpeed speed, std::string &error);
    void unplug();

    // Speaks USB/IP: see UsbIp.h. -1 while nothing is plugged in.
    int fd() const { return m_fd; }

    // The node that the kernel has made for the device, "" until it has. `pattern` leads to the entry of
    // that name below the device's directory in sysfs; without one it is the node that libusb opens.
    std::string node(const std::string &pattern) const;

private:
    bool choosePort(std::string &error);
    bool hand(int fd, UsbSpeed speed, std::string &error) const;
    std::string controller() const;
    std::string directory() const;

    UsbPlaces m_places;
    int m_port = -1;
    int m_fd = -1;
};

} // namespace sim
