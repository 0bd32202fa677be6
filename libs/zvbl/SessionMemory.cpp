// Reading, writing and comparing memory, packet by packet.

#include <algorithm>

#include "libs/zvbl/Packets.h"
#include "libs/zvbl/Session.h"

namespace zvbl {
namespace {

constexpr std::size_t packetsOfRun = 16;
constexpr char runFailed[] = "the packets of a run are read again, one by one";

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
    write.groups.reserve(2);
    write.groups.push_back(addressGroup(block.address));
    write.groups.push_back({block.data, Check::sum, true});
    write.packet = true;
    return write;
}

} // namespace

Status Session::upload(std::uint32_t address, std::uint8_t *data, std::size_t length) {
    if (!isOpen())
        return Status::notOpen;
    const bool guarded = m_parts.framing->guardsReplies();
    const std::size_t size = guarded ? 0 : sectorSize(address, length);
    const bool unvouched = size == 0 && !guarded && isFlash(address) && length >= wire::smallestSector;
    Status status = Status::ok;
    for (std::size_t done = 0, part = 0; done < length && status == Status::ok; done += part) {
        const auto at = static_cast<std::uint32_t>(address + done);
        const Sectors sectors = nextSectors(at, length - done, size);
        part = sectors.bytes();
        status = read(at, data + done, part);
        if (status == Status::ok && sectors.size == size)
            status = vouchForSectors(sectors, data + done);
        else if (status == Status::ok && unvouched)
            status = settleUnvouched(at, data + done, part);
    }
    return status;
}

Status Session::read(std::uint32_t address, std::uint8_t *data, std::size_t length) {
    const auto keep = [data](const Packet &packet, const Bytes &bytes) {
        std::copy(bytes.begin(), bytes.end(), data + packet.offset);
        return Status::ok;
    };
    for (const std::vector<Packet> &run : runsOf(cutIntoPackets(address, length, packetSize()))) {
        std::size_t count = 0;
        Status status = readRun(run, keep, count);
        if (count > 1 && isWorthAnotherTry(status)) {
            m_trace->remark(runFailed);
            status = Status::ok;
            for (std::size_t i = 0; i < run.size() && status == Status::ok; ++i)
                status = readAlone(run[i], keep);
        }
        if (status != Status::ok)
            return status;
    }
    return Status::ok;
}

std::vector<std::vector<Packet>> Session::runsOf(const std::vector<Packet> &packets) const {
    return cutIntoRuns(packets, m_parts.framing->readsInRuns() ? packetsOfRun : 1);
}

Status Session::readPacket(const Packet &packet, bool more, Tries tries, Bytes &bytes) {
    Command read = readCommand(packet.address, packet.length);
    read.more = more;
    return exchange(read, bytes, tries);
}

// A byte too many in one packet may show at the end of the last only, so nothing of a run is believed before.
// What is in front of the first packet is known to be well, so it has all its tries.
template <class Take>
Status Session::readRun(const std::vector<Packet> &run, Take take, std::size_t &count) {
    Status status = Status::ok;
    for (count = 0; count < run.size() && status == Status::ok;) {
        const Packet &packet = run[count];
        const Tries tries = count == 0 ? Tries::thrice : Tries::once;
        Bytes bytes;
        status = readPacket(packet, ++count < run.size(), tries, bytes);
        if (status == Status::ok)
            status = take(packet, bytes);
    }
    return status;
}

template <class Take>
Status Session::readAlone(const Packet &packet, Take take) {
    Bytes bytes;
    const Status status = readPacket(packet, false, Tries::thrice, bytes);
    return status == Status::ok ? take(packet, bytes) : status;
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
    m_ahead.goesOn = m_ahead.compared > 0 && m_ahead.next == address;
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
    for (const std::vector<Packet> &run : runsOf(packets)) {
        const Status status = compareRun(run, data);
        // 0x13 says that the data differ, so a refusal must not say it here.
        if (status != Status::ok)
            return status == Status::refusedCommand ? Status::refused : status;
    }
    return Status::ok;
}

// A packet that differs is read once more: a reply has no checksum, and it may have been the line.
Status Session::compareRun(const std::vector<Packet> &run, const std::uint8_t *data) {
    const auto compare = [data](const Packet &packet, const Bytes &bytes) {
        return std::equal(bytes.begin(), bytes.end(), data + packet.offset) ? Status::ok : Status::differs;
    };
    std::size_t count = 0;
    Status status = readRun(run, compare, count);
    const bool differed = status == Status::differs;
    if (differed)
        status = readAlone(run[count - 1], compare);
    if (run.size() == 1 || (differed ? status != Status::ok : count == 1 || !isWorthAnotherTry(status)))
        return status;
    m_trace->remark(runFailed);
    status = Status::ok;
    for (std::size_t i = 0; i < run.size() && status == Status::ok; ++i) {
        status = readAlone(run[i], compare);
        if (status == Status::differs)
            status = readAlone(run[i], compare);
    }
    return status;
}

} // namespace zvbl
