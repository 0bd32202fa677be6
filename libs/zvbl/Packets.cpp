#include "libs/zvbl/Packets.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace zvbl {
namespace {

constexpr std::uint32_t flashEnd = 0x10000000; // nothing that takes single bytes lies below
constexpr std::uint32_t ramEnd = 0x40000000;
constexpr std::size_t granularity = wire::writeGranularity;

} // namespace

bool isFlash(std::uint32_t address) {
    return address >= wire::flashBase && address < flashEnd;
}

bool isRam(std::uint32_t address) {
    return address >= wire::ramBase && address < ramEnd;
}

std::vector<Packet> cutIntoPackets(std::uint32_t address, std::size_t length, std::size_t packetSize) {
    const bool aligned = isFlash(address);
    if (aligned)
        packetSize = std::max(packetSize - packetSize % granularity, granularity);
    std::vector<Packet> packets;
    packets.reserve(length / packetSize + 2);
    for (std::size_t offset = 0; offset < length;) {
        const auto at = static_cast<std::uint32_t>(address + offset);
        const std::size_t room = packetSize - (aligned ? at % granularity : 0);
        packets.push_back({at, offset, std::min(room, length - offset)});
        offset += packets.back().length;
    }
    return packets;
}

std::vector<std::vector<Packet>> cutIntoRuns(const std::vector<Packet> &packets, std::size_t length) {
    std::vector<std::vector<Packet>> runs;
    for (const Packet &packet : packets) {
        if (runs.empty() || runs.back().size() == length)
            runs.emplace_back();
        runs.back().push_back(packet);
    }
    return runs;
}

bool isBlank(const std::uint8_t *data, std::size_t length) {
    return std::all_of(data, data + length, [](std::uint8_t byte) { return byte == blank; });
}

std::vector<Packet> packetsOf(std::uint32_t address, const std::uint8_t *data, std::size_t length, std::size_t size,
                              bool withoutBlank) {
    std::vector<Packet> packets = cutIntoPackets(address, length, size);
    const auto blankPacket = [data](const Packet &packet) { return isBlank(data + packet.offset, packet.length); };
    if (withoutBlank)
        packets.erase(std::remove_if(packets.begin(), packets.end(), blankPacket), packets.end());
    return packets;
}

Block fillUp(const Packet &packet, const std::uint8_t *data) {
    const std::size_t front = isFlash(packet.address) ? packet.address % granularity : 0;
    Block block{static_cast<std::uint32_t>(packet.address - front), Bytes(front, 0xFF)};
    block.data.insert(block.data.end(), data + packet.offset, data + packet.offset + packet.length);
    while (isFlash(packet.address) && block.data.size() % granularity != 0)
        block.data.push_back(0xFF);
    return block;
}

} // namespace zvbl
