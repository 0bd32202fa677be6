#include "sim/links/usb/DfuDescriptors.h"

#include <cstdio>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

namespace {

enum StringNumber : std::uint8_t { noString, productString, serialString, memoryString };

std::uint8_t low(unsigned value) {
    return static_cast<std::uint8_t>(value);
}
std::uint8_t high(unsigned value) {
    return static_cast<std::uint8_t>(value >> 8);
}

Bytes deviceDescriptor(const ChipFacts &chip) {
    const unsigned release = unsigned{chip.version} << 4; // version 2.1 is 0210
    return {18,
            1,
            0x00,
            0x02,
            0,
            0,
            0,
            64, // USB 2.0, 64 bytes a packet on endpoint 0
            low(wire::dfuVendorId),
            high(wire::dfuVendorId),
            low(wire::dfuProductId),
            high(wire::dfuProductId),
            low(release),
            high(release),
            noString,
            productString,
            serialString,
            1};
}

// With its interface, and the functional descriptor of DFU 1.1, 4.1.3.
Bytes configurationDescriptor(unsigned transferSize) {
    constexpr std::uint8_t total = 9 + 9 + 9;
    constexpr std::uint8_t downAndUp = 0x03; // not manifestation tolerant: after leaving the device is gone
    return {9,
            2,
            total,
            0,
            1,
            1,
            noString,
            0x80,
            50,
            9,
            4,
            0,
            0,
            0,
            0xFE,
            0x01,
            0x02,
            memoryString,
            9,
            0x21,
            downAndUp,
            0,
            0,
            low(transferSize),
            high(transferSize),
            low(wire::dfuVersion),
            high(wire::dfuVersion)};
}

std::string memoryOf(const ChipFacts &chip) {
    char text[64];
    std::snprintf(text, sizeof text, "@Internal Flash  /0x%08X/%03u*%03uKg", static_cast<unsigned>(wire::flashBase),
                  chip.flashKb * 1024 / chip.sectorSize, chip.sectorSize / 1024);
    return text;
}

std::string serialOf(const Chip &chip) {
    constexpr std::size_t length = 12;
    Bytes id;
    chip.read(wire::uniqueId, length, id);
    std::string text;
    for (const unsigned byte : id) {
        char digits[8];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += digits;
    }
    return text;
}

} // namespace

std::uint16_t dfuTransferSize(const Chip &chip) {
    return static_cast<std::uint16_t>(chip.facts().sectorSize);
}

UsbDescriptors dfuDescriptors(const Chip &chip) {
    return {deviceDescriptor(chip.facts()),
            configurationDescriptor(dfuTransferSize(chip)),
            {"ZV32 bootloader", serialOf(chip), memoryOf(chip.facts())}};
}

} // namespace sim
