#pragma once

#include "sim/chip/Chip.h"
#include "sim/links/usb/UsbDevice.h"

namespace sim {

// The most that one block carries: a sector, so that a host that writes sector by sector needs no new pointer for
// each.
std::uint16_t dfuTransferSize(const Chip &chip);

// What a chip in its bootloader says of itself: one interface in DFU mode, whose string describes the flash,
// and as serial number the unique identifier.
UsbDescriptors dfuDescriptors(const Chip &chip);

} // namespace sim
