// Whole sectors against the checksum that the chip computes of them; docs/wire-protocol.md, "Whole sectors".

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <string>

#include "libs/zvbl/Crc32.h"
#include "libs/zvbl/Packets.h"
#include "libs/zvbl/Session.h"

namespace zvbl {
namespace {

constexpr std::size_t largestSector = 65536;
constexpr std::size_t longestRun = 8192; // bytes of one question: in more, three wrong bits could be missed
constexpr int rereads = 3;               // of a sector that does not fit
constexpr int questions = 3;             // for what a damaged answer may have hidden

bool isSectorSize(std::size_t size) {
    return size >= wire::smallestSector && size <= largestSector && (size & (size - 1)) == 0;
}

// Whoever has to have everything read back says so in the environment.
bool isReadingWished() {
    const char *wish = std::getenv("ZVBL_VERIFY_BY");
    return wish && std::string(wish) == "read";
}

} // namespace

Session::Sectors Session::Sectors::one(std::size_t number) const {
    return {static_cast<std::uint32_t>(address + number * size), size, 1};
}

// The list of GET has no checksum, and one wrong byte of it hides the command: that it is not there has to be heard
// twice. If no two lists are the same, the command itself will tell.
bool Session::listsCrc() {
    if (m_parts.framing->guardsReplies())
        m_crc.doubtful.clear();
    for (int left = questions; !m_crc.doubtful.empty(); --left) {
        const Bytes before = m_crc.doubtful;
        Capabilities again;
        const bool heard = left > 0 && getCapabilities(again) == Status::ok;
        if (!heard)
            m_crc.listed = true;
        if (!heard || m_crc.doubtful == before)
            m_crc.doubtful.clear();
    }
    return m_crc.listed;
}

// The size of the sectors at an address, 0 where the chip is not asked for checksums.
std::size_t Session::sectorSize(std::uint32_t address, std::size_t length) {
    if (!m_crc.trusted || !isFlash(address) || length < wire::smallestSector || isReadingWished() || !listsCrc())
        return 0;
    const bool spim = address >= wire::spimBase;
    std::optional<std::size_t> &size = spim ? m_crc.spimSector : m_crc.flashSector;
    if (!size)
        size = askSectorSize(spim ? wire::spimBase : wire::flashBase);
    return *size;
}

// FIRMWARE_CRC of no sector at all: a chip answers how large one is, or refuses, if it does not know that.
std::size_t Session::askSectorSize(std::uint32_t address) {
    for (int left = questions; left > 0; --left) {
        std::array<std::uint8_t, 4> answer{};
        const bool told = firmwareCrc(address, 0, answer) == Status::ok;
        const std::size_t size = number32(answer.data());
        if (told && isSectorSize(size))
            return size;
    }
    m_trace->remark("the chip does not tell the size of its sectors: nothing is compared by checksum");
    return 0;
}

// What lies before the next whole sectors, or after the last, is one stretch: of a size that no sector has.
Session::Sectors Session::nextSectors(std::uint32_t address, std::size_t left, std::size_t size) {
    const std::size_t before = size == 0 ? left : (size - address % size) % size;
    if (before > 0 || left < size)
        return {address, before > 0 ? std::min(before, left) : left, 1};
    return {address, size, std::min(left, std::max(longestRun, size)) / size};
}

Session::Fit Session::askCrc(const Sectors &sectors, const std::uint8_t *data) {
    if (!m_crc.trusted)
        return Fit::unknown;
    std::array<std::uint8_t, 4> answer{};
    const Status status = firmwareCrc(sectors.address, static_cast<std::uint16_t>(sectors.count), answer);
    if (status == Status::ok)
        return number32(answer.data()) == crc32(data, sectors.bytes()) ? Fit::equal : Fit::differs;
    if (status != Status::refused)
        distrustCrc("the chip gives no checksum: it is not asked again");
    return Fit::unknown;
}

void Session::distrustCrc(const char *why) {
    m_crc.trusted = false;
    m_trace->remark(why);
}

Status Session::compareSectors(const Sectors &sectors, const std::uint8_t *data, bool optimise) {
    std::size_t done = 0;
    if (sectors.bytes() < longestRun)
        while (done < sectors.count && fitAhead(sectors.one(done), data + done * sectors.size))
            ++done;
    if (done == 0 && sectors.count > 1 && askCrc(sectors, data) == Fit::equal) {
        noteCompared(sectors);
        return Status::ok;
    }
    Status status = Status::ok;
    for (; done < sectors.count && status == Status::ok; ++done)
        status = compareSector(sectors.one(done), data + done * sectors.size, optimise);
    return status;
}

// Equal checksums are equal data. Others prove nothing yet: what is read decides. If that is equal, all of
// it, the chip computes another checksum.
Status Session::compareSector(const Sectors &sector, const std::uint8_t *data, bool optimise) {
    const std::vector<Packet> packets = packetsOf(sector.address, data, sector.size, packetSize(), optimise);
    const Fit fit = packets.empty() ? Fit::equal : askCrc(sector, data);
    if (fit == Fit::equal) {
        noteCompared(sector);
        return Status::ok;
    }
    const Status status = compareByReading(data, packets);
    const auto add = [](std::size_t sum, const Packet &packet) { return sum + packet.length; };
    const bool whole = std::accumulate(packets.begin(), packets.end(), std::size_t{0}, add) == sector.size;
    if (fit != Fit::differs || status != Status::ok || !whole || askCrc(sector, data) != Fit::differs)
        return status;
    m_crc.foreign = true;
    distrustCrc("the chip computes another checksum: it is not asked again");
    return status;
}

// Makes sure that what was read is what the chip holds, as far as its checksum can tell.
Status Session::vouchForSectors(const Sectors &sectors, std::uint8_t *data) {
    const Fit fit = askCrc(sectors, data);
    if (fit != Fit::differs)
        return fit == Fit::equal ? Status::ok : settleUnvouched(sectors.address, data, sectors.bytes());
    Status status = Status::ok;
    for (std::size_t i = 0; i < sectors.count && status == Status::ok; ++i) {
        std::uint8_t *const part = data + i * sectors.size;
        const Sectors sector = sectors.one(i);
        status = vouchForSector(sector, part, sectors.count == 1 ? fit : askCrc(sector, part));
    }
    return status;
}

// Reads a sector again until it fits. noAnswer: it never does.
Status Session::vouchForSector(const Sectors &sector, std::uint8_t *data, Fit fit) {
    for (int left = rereads; fit == Fit::differs; --left) {
        m_trace->remark("what was read does not fit its checksum");
        if (left == 0)
            return Status::noAnswer;
        if (const Status status = read(sector.address, data, sector.size); status != Status::ok)
            return status;
        fit = askCrc(sector, data);
    }
    return fit == Fit::equal ? Status::ok : settleUnvouched(sector.address, data, sector.size);
}

// Without a checksum what was read is taken as it is. Where a chip lists one, and did not give it, it may have been
// the line, which may have harmed what was read as well: that is read a second time.
Status Session::settleUnvouched(std::uint32_t address, const std::uint8_t *data, std::size_t length) {
    tellUnvouched();
    if (!m_crc.listed || m_crc.foreign || isReadingWished())
        return Status::ok;
    Bytes again(length);
    const Status status = read(address, again.data(), again.size());
    if (status != Status::ok)
        return status;
    return std::equal(again.begin(), again.end(), data) ? Status::ok : Status::noAnswer;
}

void Session::tellUnvouched() {
    if (!m_crc.toldUnvouched)
        m_trace->remark("nothing vouches for what is read: there is no checksum of it");
    m_crc.toldUnvouched = true;
}

} // namespace zvbl
