#pragma once

#include <deque>

#include "sim/links/usb/UsbDevice.h"

namespace sim {

// A device's end of USB/IP, as Linux' vhci_hcd speaks it to a device that it has been given: messages of 48
// bytes, and the data of the transfers after them, numbers highest byte first (Documentation/usb/
// usbip_protocol.rst of the kernel). No isochronous transfers. A reset of the port does not travel.
class UsbIp {
public:
    explicit UsbIp(UsbDevice &device) : m_device(device) {}

    // After an unplugging: nothing of before holds any more.
    void forget();

    // What the host has sent, in any pieces. False when it cannot be USB/IP, or wants what is not here.
    bool receive(const std::uint8_t *bytes, std::size_t length, Nanoseconds now);

    // What goes to the host by now, the answers in the order of their times. Ends where the device goes away.
    Bytes takeDue(Nanoseconds now);

    // When there is something to do without a message from the host; nothing: never.
    std::optional<Nanoseconds> nextDue(Nanoseconds now);

private:
    struct Transfer {
        std::uint32_t number;
        bool in;
        std::uint8_t endpoint;
        std::size_t length;
        UsbSetup setup;
        Bytes out;
    };
    struct Answered {
        std::uint32_t number;
        bool control;
        std::size_t length; // of what went either way
        UsbAnswer answer;
    };

    std::size_t wholeLength() const;
    bool takeMessage(Nanoseconds now);
    Transfer transferOf(std::uint32_t message) const;
    UsbAnswer ask(const Transfer &transfer, Nanoseconds now);
    void askWaiting(Nanoseconds now);
    void settle(const Transfer &transfer, UsbAnswer answer);
    bool unlink(std::uint32_t number);

    UsbDevice &m_device;
    Bytes m_arrived;
    Bytes m_unlinked;                // answers to UNLINK, which go at once
    std::deque<Transfer> m_waiting;  // for data
    std::deque<Transfer> m_silent;   // never answered, until the host takes them back
    std::deque<Answered> m_answered; // in the order of their times
};

} // namespace sim
