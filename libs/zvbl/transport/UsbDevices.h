#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "libs/zvbl/Status.h"
#include "libs/zvbl/transport/UsbBus.h"

namespace zvbl {

constexpr std::size_t mostUsbDevices = 99; // rows of a device list

// One row of a device list.
struct UsbRow {
    std::uint16_t vendor;
    std::uint16_t product;
    std::string text; // where it is plugged in, its serial number and name, or why it can't be opened
};

// What is told from another device when it comes back under another device number. An empty serial number
// is one that is not known.
struct UsbIdentity {
    UsbPlace place;
    std::string serial;

    bool isThatOf(const UsbIdentity &other) const {
        return place == other.place && (serial.empty() || other.serial.empty() || serial == other.serial);
    }
};

// The targets that are plugged in, by bus and port path; where ZVBL_DFU of the environment names a place ("1-2.3")
// or a serial number, those of that place or number alone. Numbers mean rows of this list from here on, except
// those of devices that restart. cantOpen: there is no USB on this machine.
Status listUsbDevices(std::vector<UsbRow> &rows);

// The device that a number means; none: the last list was not so long.
std::optional<UsbIdentity> usbDeviceOf(int number);

// A device that resets drops off the bus for a while, and another one moves up into its row of the list. So
// its number means nothing else until it was opened again, and a new list was made.
void expectUsbRestart(int number, const UsbIdentity &device);
void endUsbRestart(int number);

// "usb 1-2.3 serial 0123 ZV32 Bootloader"
std::string describeUsb(const UsbIdentity &device, const std::string &productName);

} // namespace zvbl
