#pragma once

#include "sim/bootloader/Board.h"
#include "sim/links/UsartLine.h"
#include "sim/links/usb/StandardRequests.h"
#include "sim/links/usb/UsbPlug.h"

namespace sim {

// A USB serial adapter with the chip's USART behind it: the Abstract Control Model of the Communications
// Device Class (CDC 1.2, PSTN 1.2), which every system has a driver for.
class AcmDevice : public UsbDevice {
public:
    // It has power and has started by now. `pace`: bytes take the time that they need at the rate that the
    // host has set.
    AcmDevice(const Wiring &wiring, Bootloader &bootloader, Faults &faults, Log &log, bool pace, Nanoseconds now);

    const UsbDescriptors &descriptors() const override { return m_descriptors; }
    UsbAnswer control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) override;
    UsbAnswer out(std::uint8_t endpoint, const Bytes &data, Nanoseconds now) override;
    UsbAnswer in(std::uint8_t endpoint, std::size_t length, Nanoseconds now) override;
    void busReset(Nanoseconds now) override;
    UsbPresence presence(Nanoseconds now) override;
    std::optional<Nanoseconds> nextEvent(Nanoseconds now) override;
    void pressReset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;

private:
    UsbAnswer setLineCoding(const Bytes &coding, Nanoseconds now);
    UsbAnswer setControlLines(unsigned lines, Nanoseconds now);
    void followHangup(Nanoseconds now);
    void powerUp(Nanoseconds now);

    Log &m_log;
    const bool m_pace;
    const UsbDescriptors m_descriptors;
    StandardRequests m_standard{m_descriptors};
    Board m_board;
    UsartProtocol m_protocol;
    UsartLine m_line;
    Bytes m_coding;
    UsbPlug m_plug;
};

} // namespace sim
