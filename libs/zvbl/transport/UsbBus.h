#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "libs/zvbl/Bytes.h"
#include "libs/zvbl/Status.h"

struct libusb_context;
struct libusb_device;
struct libusb_device_handle;

namespace zvbl {

// Where a device is plugged in: the bus, and the ports of the hubs on the way. Unlike the device number it
// stays the same over a reset.
struct UsbPlace {
    unsigned bus = 0;
    Bytes ports{};

    std::string name() const; // as the kernel writes it: 1-2.3
    bool operator==(const UsbPlace &other) const { return bus == other.bus && ports == other.ports; }
    bool operator<(const UsbPlace &other) const { return bus != other.bus ? bus < other.bus : ports < other.ports; }
};

// The interface of the Device Firmware Upgrade class in DFU mode, and its functional descriptor (USB DFU 1.1,
// 4.1.3 and 4.2.4). Without that descriptor size and version are 0.
struct DfuInterface {
    std::uint8_t number = 0;
    std::uint8_t alternate = 0;
    bool onlyAlternate = true;
    std::uint16_t transferSize = 0;
    std::uint16_t version = 0; // bcdDFUVersion
};

// One device that is a target: one of our vendor and product numbers, in DFU mode.
struct UsbTarget {
    UsbPlace place;
    std::uint16_t vendor = 0;
    std::uint16_t product = 0;
    std::uint8_t serialText = 0; // numbers of string descriptors, 0 for none
    std::uint8_t productText = 0;
    DfuInterface dfu;
    libusb_device *device = nullptr; // lives as long as the bus that it was found on
};

// The targets that are plugged in at this moment, in the order of their places. Each one is a look of its own:
// libusb's own list follows the devices only where a udev daemon runs.
class UsbBus {
public:
    UsbBus();
    ~UsbBus();
    UsbBus(const UsbBus &) = delete;
    UsbBus &operator=(const UsbBus &) = delete;

    bool works() const { return m_context != nullptr; } // false: no USB on this machine
    const std::string &obstacle() const { return m_obstacle; }
    const std::vector<UsbTarget> &targets() const { return m_targets; }
    const UsbTarget *find(const UsbPlace &place) const;

private:
    libusb_context *m_context = nullptr;
    libusb_device **m_devices = nullptr;
    std::string m_obstacle;
    std::vector<UsbTarget> m_targets;
};

// A device that is open. The bus has to outlive it.
class UsbHandle {
public:
    explicit UsbHandle(const UsbTarget &target);
    ~UsbHandle();
    UsbHandle(const UsbHandle &) = delete;
    UsbHandle &operator=(const UsbHandle &) = delete;

    int error() const { return m_error; } // of libusb; 0 when it is open
    libusb_device_handle *get() const { return m_handle; }

    // A string descriptor, printable; empty if there is none. A device that does not answer is not asked again:
    // each time would be a second.
    std::string text(std::uint8_t number);

private:
    libusb_device_handle *m_handle = nullptr;
    int m_error = 0;
    bool m_mute = false;
};

// What the operating system would say to an error of libusb.
std::string usbErrorText(int error);

} // namespace zvbl
