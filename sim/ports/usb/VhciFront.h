#pragma once

#include "sim/links/usb/UsbIp.h"
#include "sim/ports/usb/Vhci.h"
#include "sim/program/Fronts.h"
#include "sim/program/Signals.h"

namespace sim {

// A USB device on the real kernel: carries its transfers between vhci_hcd and it, at the real time.
class VhciFront {
public:
    // `node` leads to the node of the driver that takes the device: see Vhci::node().
    VhciFront(UsbDevice &device, const std::string &node, Machine &machine)
        : device_(device), node_(node), machine_(machine), usbIp_(device) {}

    // Serves until a signal ends it, or the device is unplugged for good. False and a message when it
    // cannot be plugged in.
    bool serve(std::string &error);

private:
    bool plugIn(std::string &error);
    bool followPresence(std::string &error);
    Wish followSignals();
    void wait();
    void giveToHost();
    bool takeFromHost();
    void announce();
    void restIfIdle();

    UsbDevice &device_;
    const std::string node_;
    Machine &machine_;
    Vhci vhci_;
    UsbIp usbIp_;
    unsigned attachments_ = 0;
    bool announced_ = false;
    bool ended_ = false; // unplugged for good
    Nanoseconds lastTraffic_ = 0;
    bool rested_ = true;
};

} // namespace sim
