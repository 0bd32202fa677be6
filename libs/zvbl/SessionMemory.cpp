// Reading, writing and comparing memory, packet by packet.

#include <algorithm>

#include "libs/zvbl/Packets.h"
#include "libs/zvbl/Session.h"

namespace zvbl {
namespace {

// What a write without an answer has left in its cells.
enum class Cells { holdTheData, canBeWritten, areSpoiled };

// In flash, cells that are done are taken out of the block by FF, which leaves a cell as it is:
// programming one twice is an error, whatever the data.
Cells judgeCells(Block &block, const Bytes &now) {
    if (now == block.data)
        return Cells::holdTheData;
    if (isRam(block.address))
        return Cells::canBeWritten;
    if (!isFlash(block.address))
        return Cells::areSpoiled; // OTP is never written twice
    for (std::size_t i = 0; i < now.size(); ++i)
        if (block.data[i] == now[i])
            block.data[i] = blank;
        else if (block.data[i] != blank && now[i] != blank)
            return Cells::areSpoiled;
    return isBlank(block.data.data(), block.data.size()) ? Cells::holdTheData : Cells::canBeWritten;
}

Command readCommand(std::uint32_t address, std::size_t length) {
    Command read{wire::opRead};
    read.groups = {addressGroup(address), {{}, Check::complement, true}};
    read.reply.size = length;
    read.packet = true;
    return read;
}

Command writeCommand(const Block &block) {
    Command write{wire::opWrite};
    write.groups = {addressGroup(block.address), {block.data, Check::sum, true}};
    write.packet = true;
    return write;
}

} // namespace

Status Session::upload(std::uint32_t address, std::uint8_t *data, std::size_t length) {
    if (!isOpen())
        return Status::notOpen;
    const bool guarded = m_parts.framing->guardsReplies();
    const std::size_t size = guarded ? 0 : sectorSize(address, length);
    if (size == 0 && !guarded && isFlash(address) && length >= wire::smallestSector)
        tellUnvouched();
    Status status = Status::ok;
    for (std::size_t done = 0, part = 0; done < length && status == Status::ok; done += part) {
        const auto at = static_cast<std::uint32_t>(address + done);
        const Sectors sectors = nextSectors(at, length - done, size);
        part = sectors.bytes();
        status = read(at, data + done, part);
        if (status == Status::ok && sectors.size == size)
            status = vouchForSectors(sectors, data + done);
    }
    return status;
}

Status Session::read(std::uint32_t address, std::uint8_t *data, std::size_t length) {
    for (const Packet &packet : cutIntoPackets(address, length, packetSize())) {
        Bytes bytes;
        const Status status = exchange(readCommand(packet.address, packet.length), bytes, Tries::thrice);
        if (status != Status::ok)
            return status;
        std::copy(bytes.begin(), bytes.end(), data + packet.offset);
    }
    return Status::ok;
}

Status Session::download(std::uint32_t address, const std::uint8_t *data, std::size_t length, bool optimise) {
    if (!isOpen())
        return Status::notOpen;
    const std::vector<Packet> packets = packetsOf(address, data, length, packetSize(), optimise);
    for (const Packet &packet : packets) {
        const bool more = &packet != &packets.back();
        if (const Status status = writePacket(fillUp(packet, data), more); status != Status::ok)
            return status;
    }
    return Status::ok;
}

Status Session::writePacket(Block block, bool more) {
    const bool repeatable = isFlash(block.address) || isRam(block.address);
    Status status = Status::noAnswer;
    for (int left = static_cast<int>(Tries::thrice); left > 0; --left) {
        Command write = writeCommand(block);
        write.more = more;
        Bytes nothing;
        status = transfer(write, nothing);
        if (status == Status::noAnswer) {
            Bytes now;
            const Command read = readCommand(block.address, block.data.size());
            if (const Status seen = exchange(read, now, Tries::thrice); seen != Status::ok)
                return seen == Status::gone ? seen : status;
            const Cells cells = judgeCells(block, now);
            if (cells != Cells::canBeWritten)
                return cells == Cells::holdTheData ? Status::ok : status;
        } else if (!repeatable || (status != Status::refused && status != Status::refusedCommand)) {
            return status;
        }
    }
    return status;
}

Status Session::verify(std::uint32_t address, const std::uint8_t *data, std::size_t length, bool optimise) {
    if (!isOpen())
        return Status::notOpen;
    const std::size_t size = sectorSize(address, length);
    Status status = Status::ok;
    for (std::size_t done = 0, part = 0; done < length && status == Status::ok; done += part) {
        const auto at = static_cast<std::uint32_t>(address + done);
        const Sectors sectors = nextSectors(at, length - done, size);
        part = sectors.bytes();
        if (sectors.size == size)
            status = compareSectors(sectors, data + done, optimise);
        else
            status = compareByReading(data + done, packetsOf(at, data + done, part, packetSize(), optimise));
    }
    return status;
}

Status Session::compareByReading(const std::uint8_t *data, const std::vector<Packet> &packets) {
    for (const Packet &packet : packets) {
        Status status = compare(packet, data + packet.offset);
        if (status == Status::differs)
            status = compare(packet, data + packet.offset); // a reply has no checksum: it may have been the line
        // 0x13 says that the data differ, so a refusal must not say it here.
        if (status != Status::ok)
            return status == Status::refusedCommand ? Status::refused : status;
    }
    return Status::ok;
}

Status Session::compare(const Packet &packet, const std::uint8_t *data) {
    Bytes bytes;
    const Status status = exchange(readCommand(packet.address, packet.length), bytes, Tries::thrice);
    if (status != Status::ok)
        return status;
    return std::equal(bytes.begin(), bytes.end(), data) ? Status::ok : Status::differs;
}

} // namespace zvbl
