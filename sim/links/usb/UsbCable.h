#pragma once

#include "sim/links/Passage.h"
#include "sim/links/usb/UsbDevice.h"

namespace sim {

// The cable between a host and a device: control transfers take their time on it, and what is to go wrong goes
// wrong there. Standard requests are left alone, so that what a host asks while it gets to know a device does
// not move the places of faults. Everything else passes.
class UsbCable : public UsbDevice {
public:
    // `pace`: transfers take about the time that they need on a full-speed bus.
    UsbCable(UsbDevice &device, Faults &faults, bool pace) : m_device(device), m_faults(faults), m_pace(pace) {}

    const UsbDescriptors &descriptors() const override { return m_device.descriptors(); }
    UsbAnswer control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) override;
    UsbAnswer out(std::uint8_t endpoint, const Bytes &data, Nanoseconds now) override;
    UsbAnswer in(std::uint8_t endpoint, std::size_t length, Nanoseconds now) override;
    void busReset(Nanoseconds now) override { m_device.busReset(now); }
    UsbPresence presence(Nanoseconds now) override;
    std::optional<Nanoseconds> nextEvent(Nanoseconds now) override;
    void pressReset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;

private:
    void advance(Nanoseconds now);
    Passage carry(Direction direction, Bytes &data);
    void unplug(const Hangup &hangup, Nanoseconds now);
    Nanoseconds busTime(std::size_t length) const;
    UsbAnswer deliver(const UsbSetup &setup, UsbAnswer answer, Nanoseconds arrival);

    UsbDevice &m_device;
    Faults &m_faults;
    bool m_pace;
    Nanoseconds m_free = 0; // endpoint 0 carries one transfer at a time
    bool m_unplugged = false;
    std::optional<Nanoseconds> m_replugAt;
};

} // namespace sim
