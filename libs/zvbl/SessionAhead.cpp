// The checksums of sectors that have yet to be compared; docs/wire-protocol.md, "Whole sectors".

#include <algorithm>

#include "libs/zvbl/Crc32.h"
#include "libs/zvbl/Session.h"

namespace zvbl {
namespace {

constexpr std::size_t growth = 3; // times what was compared so far is asked for
constexpr std::size_t crcSize = 4;

} // namespace

void Session::noteCompared(const Sectors &sectors) {
    const bool inRow = m_ahead.compared > 0 && m_ahead.next == sectors.address;
    const std::size_t known = inRow ? m_ahead.crcs.size() : 0;
    const auto rest = m_ahead.crcs.end() - static_cast<std::ptrdiff_t>(known - std::min(known, sectors.count));
    m_ahead.crcs.erase(m_ahead.crcs.begin(), rest);
    m_ahead.compared = (inRow ? m_ahead.compared : 0) + sectors.count;
    m_ahead.next = static_cast<std::uint32_t>(sectors.address + sectors.bytes());
}

// Whether the checksum of a sector that follows what was compared is known, and fits. Each is used once: who
// compares a sector again wants it looked at again.
bool Session::fitAhead(const Sectors &sector, const std::uint8_t *data) {
    if (!m_ahead.goesOn || m_ahead.next != sector.address)
        return false;
    if (m_ahead.crcs.empty() || Clock::now() - m_ahead.heard > timing().believed)
        askAhead();
    if (m_ahead.crcs.empty() || m_ahead.crcs.front() != crc32(data, sector.size))
        return false;
    noteCompared(sector);
    return true;
}

// A chip that refuses has fewer sectors, or does not know the question. Without an answer it is not worth another
// try: the sector is asked for alone.
void Session::askAhead() {
    CrcsAhead ahead = m_ahead;
    const std::size_t room = std::min<std::size_t>((packetSize() - 1) / crcSize, wire::mostCrcs);
    std::size_t count = m_crc.ofEach ? std::min(growth * ahead.compared, room) : 0;
    ahead.crcs.clear();
    for (; count > 0 && ahead.crcs.empty(); count /= 2) {
        const Status status = crcOfEach(ahead.next, count, ahead.crcs);
        if (status != Status::ok && (status != Status::refused || count == 1))
            m_crc.ofEach = false;
        if (status != Status::ok && status != Status::refused)
            return;
    }
    ahead.heard = Clock::now();
    m_ahead = ahead;
}

Status Session::crcOfEach(std::uint32_t address, std::size_t count, std::vector<std::uint32_t> &crcs) {
    Command request{wire::opFirmwareCrc, {addressGroup(address), {}}};
    append16(request.groups.back().bytes, static_cast<std::uint32_t>(wire::crcOfEach | count));
    request.reply = {false, crcSize * count, Reply::End::sum};
    Bytes reply;
    const Status status = exchange(request, reply, Tries::once);
    for (std::size_t i = 0; status == Status::ok && i < reply.size(); i += crcSize)
        crcs.push_back(number32(&reply[i]));
    return status;
}

} // namespace zvbl
