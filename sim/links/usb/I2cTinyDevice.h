#pragma once

#include "sim/bootloader/Log.h"
#include "sim/links/I2cProtocol.h"
#include "sim/links/usb/StandardRequests.h"
#include "sim/links/usb/UsbPlug.h"

namespace sim {

// A USB adapter to an I2C bus with the chip on it, as the kernel's driver i2c-tiny-usb drives one: a control
// transfer for each message, and one that asks whether the address was acknowledged.
class I2cTinyDevice : public UsbDevice {
public:
    // `pace`: messages take the time that they need at the rate that the host has set.
    I2cTinyDevice(Bootloader &bootloader, Faults &faults, bool pace);

    const UsbDescriptors &descriptors() const override { return m_descriptors; }
    UsbAnswer control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) override;
    void busReset(Nanoseconds now) override;
    UsbPresence presence(Nanoseconds now) override;
    std::optional<Nanoseconds> nextEvent(Nanoseconds now) override;
    void pressReset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;

private:
    struct Request;
    static const std::vector<Request> &requests();

    UsbAnswer echo(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer functions(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer setDelay(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer status(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer message(const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    UsbAnswer transfer(bool read, const UsbSetup &setup, const Bytes &out, Nanoseconds now);
    Nanoseconds busTime(std::size_t bytes) const;
    void followPlug(Nanoseconds now);
    void powerUp(Nanoseconds now);

    const UsbDescriptors m_descriptors;
    StandardRequests m_standard{m_descriptors};
    I2cProtocol m_chip;
    const bool m_pace;
    Nanoseconds m_bitTime;
    std::uint8_t m_status;
    UsbPlug m_plug;
};

} // namespace sim
