#pragma once

#include "sim/links/usb/UsbIp.h"
#include "sim/ports/Port.h"
#include "sim/ports/usb/Vhci.h"

namespace sim {

// A USB device on the real kernel: carries its transfers between vhci_hcd and it, at the real time.
class VhciPort : public Port {
public:
    // `node` leads to the node of the driver that takes the device: see Vhci::node().
    VhciPort(UsbDevice &device, std::string node, UsbPlaces places = {})
        : m_device(device), m_node(std::move(node)), m_vhci(std::move(places)), m_usbIp(device) {}

    bool plugIn(std::string &error) override { return followPresence(error); }
    void unplug() override { m_vhci.unplug(); }
    std::string takeReady() override;
    void reset(Nanoseconds now) override { m_device.pressReset(now); }
    void losePower(Nanoseconds now) override { m_device.losePower(now); }
    bool work(Nanoseconds now, std::string &error) override;
    std::vector<int> fds() const override { return {m_vhci.fd()}; }
    std::optional<Nanoseconds> due(Nanoseconds now) override;
    std::optional<Hangup> hangup() const override { return m_ended ? std::optional(Hangup{}) : std::nullopt; }

private:
    bool plugInDevice(std::string &error);
    bool followPresence(std::string &error);
    void giveToHost();
    bool takeFromHost();

    UsbDevice &m_device;
    const std::string m_node;
    Vhci m_vhci;
    UsbIp m_usbIp;
    unsigned m_attachments = 0;
    bool m_announced = false;
    bool m_ended = false; // unplugged for good
};

} // namespace sim
