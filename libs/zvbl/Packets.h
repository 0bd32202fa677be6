#pragma once

#include <cstdint>
#include <vector>

#include "libs/zvbl/Command.h"

namespace zvbl {

// One packet of a longer stretch of memory.
struct Packet {
    std::uint32_t address; // of the first data byte
    std::size_t offset;    // of it in the data of the call
    std::size_t length;
};

// Main flash and SPIM: what is written there starts and ends at a multiple of 4.
bool isFlash(std::uint32_t address);
bool isRam(std::uint32_t address);

// Cuts a stretch into packets of at most packetSize bytes. In flash every packet but the first starts at
// a multiple of 4, and the size is rounded down to one, but not to 0.
std::vector<Packet> cutIntoPackets(std::uint32_t address, std::size_t length, std::size_t packetSize);

// The same without the packets whose data are all FF, if that is wished.
std::vector<Packet> packetsOf(std::uint32_t address, const std::uint8_t *data, std::size_t length, std::size_t size,
                              bool withoutBlank);

// The same packets, so many in a row.
std::vector<std::vector<Packet>> cutIntoRuns(const std::vector<Packet> &packets, std::size_t length);

constexpr std::uint8_t blank = 0xFF; // a cell that is erased
bool isBlank(const std::uint8_t *data, std::size_t length);

// The data of a packet as they are written: in flash filled up with FF before and after, and the
// address rounded down to match.
struct Block {
    std::uint32_t address;
    Bytes data;
};
Block fillUp(const Packet &packet, const std::uint8_t *data);

} // namespace zvbl
