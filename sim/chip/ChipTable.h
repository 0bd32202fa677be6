#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace sim {

using Bytes = std::vector<std::uint8_t>;

// Where a family keeps what protects it, counted in bytes of the compact form.
struct OptionLayout {
    char name;
    std::uint32_t address;             // of the option bytes in the chip's memory
    std::size_t accessByte;            // flash access protection
    std::vector<std::size_t> eppBytes; // erase and program protection, the first one has bits 0 to 7
    bool wideBits;                     // bits from 32 up cover 128 KiB each; SPIM has no bit
    bool resetsAfterWrite;             // the chip resets by itself after a write of its option bytes
};

// What one chip is. The simulator's own data: never read from the programmer's map files.
struct ChipFacts {
    std::string_view name;
    std::uint8_t series;
    std::uint32_t pid;
    std::size_t idLength; // 2 or 5 bytes travel
    unsigned flashKb;
    unsigned sectorSize;
    unsigned sectorsPerBit; // of one erase/program protection bit
    char layout;
    std::size_t userDataLength; // compact option bytes
    std::uint8_t version;
    std::uint8_t bid;
    std::uint8_t bidReserve;
    unsigned ramKb;
    bool spim;
    bool levels;              // knows protection levels, and the one that cannot be undone
    bool goToEndResets;       // GO to the last word of flash resets
    bool oldest;              // the first bootloader: one-byte sector numbers, few of the later commands
    std::uint32_t otpAddress; // 0: no OTP area
    std::size_t otpLength;
};

const std::vector<ChipFacts> &chipTable();

// The chip of that exact name, or null.
const ChipFacts *findChip(std::string_view name);

const OptionLayout &layoutOf(const ChipFacts &chip);

// The opcodes that the chip supports, in the order in which GET lists them; `further` are those that it
// has on one link alone.
Bytes opcodesOf(const ChipFacts &chip, Bytes further = {});

// The identifier as it travels: 2 bytes, or 5 with the halves of the PID swapped and the series last.
Bytes identifierOf(const ChipFacts &chip);

} // namespace sim
