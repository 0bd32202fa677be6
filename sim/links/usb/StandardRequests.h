#pragma once

#include <set>

#include "sim/links/usb/UsbDevice.h"

namespace sim {

// The requests that every USB device knows (USB 2.0, 9.4), for a device with one configuration whose
// interfaces have no alternate settings. What a device does not know is stalled.
class StandardRequests {
public:
    explicit StandardRequests(const UsbDescriptors &descriptors) : m_descriptors(descriptors) {}

    // A request with UsbSetup::standard().
    UsbAnswer answer(const UsbSetup &setup, Nanoseconds now);

    // After a reset of the bus, and when the device comes back.
    void reset();

    // Whether the host has chosen the configuration.
    bool configured() const { return m_configuration != 0; }

    // Whether the host has halted an endpoint; its address with the direction bit.
    bool halted(std::uint8_t endpoint) const { return m_halted.count(endpoint) != 0; }

private:
    struct Row;
    static const std::vector<Row> &rows();

    std::optional<Bytes> getDescriptor(const UsbSetup &setup);
    std::optional<Bytes> getConfiguration(const UsbSetup &setup);
    std::optional<Bytes> setConfiguration(const UsbSetup &setup);
    std::optional<Bytes> getInterface(const UsbSetup &setup);
    std::optional<Bytes> setInterface(const UsbSetup &setup);
    std::optional<Bytes> getStatus(const UsbSetup &setup);
    std::optional<Bytes> setAddress(const UsbSetup &setup);
    std::optional<Bytes> setHalt(const UsbSetup &setup);
    std::optional<Bytes> clearHalt(const UsbSetup &setup);
    bool hasInterface(std::uint16_t number) const;
    bool hasEndpoint(std::uint16_t address) const;

    const UsbDescriptors &m_descriptors;
    std::uint8_t m_configuration = 0;
    std::set<std::uint8_t> m_halted;
};

} // namespace sim
