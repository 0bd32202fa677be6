#pragma once

#include "sim/links/usb/UsbIp.h"
#include "sim/ports/Port.h"
#include "sim/ports/usb/Vhci.h"

namespace sim {

// A USB device on the real kernel: carries its transfers between vhci_hcd and it, at the real time.
class VhciPort : public Port {
public:
    // `node` leads to the node of the driver that takes the device: see Vhci::node().
    VhciPort(UsbDevice &device, std::string node) : device_(device), node_(std::move(node)), usbIp_(device) {}

    bool plugIn(std::string &error) override { return followPresence(error); }
    void unplug() override { vhci_.unplug(); }
    std::string takeReady() override;
    void reset(Nanoseconds now) override { device_.pressReset(now); }
    void losePower(Nanoseconds now) override { device_.losePower(now); }
    bool work(Nanoseconds now, std::string &error) override;
    std::vector<int> fds() const override { return {vhci_.fd()}; }
    std::optional<Nanoseconds> due(Nanoseconds now) override;
    std::optional<Hangup> hangup() const override { return ended_ ? std::optional(Hangup{}) : std::nullopt; }

private:
    bool plugInDevice(std::string &error);
    bool followPresence(std::string &error);
    void giveToHost();
    bool takeFromHost();

    UsbDevice &device_;
    const std::string node_;
    Vhci vhci_;
    UsbIp usbIp_;
    unsigned attachments_ = 0;
    bool announced_ = false;
    bool ended_ = false; // unplugged for good
};

} // namespace sim
