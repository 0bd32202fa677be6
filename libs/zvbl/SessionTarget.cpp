// Everything else that a chip can be told: erase, checksum, SPIM, user system data, protection, running.

#include <algorithm>
#include <utility>

#include "libs/zvbl/Session.h"
#include "libs/zvbl/framing/Groups.h"

namespace zvbl {
namespace {

constexpr std::uint8_t idleLevel = 0xFF; // of a bus that nobody drives

Group numbers(const std::uint8_t *bytes, std::size_t count) {
    return {Bytes(bytes, bytes + count), Check::sum, true};
}

Group number16(std::uint16_t value) {
    Group group;
    append16(group.bytes, value);
    return group;
}

Group oneByte(std::uint8_t value) {
    return {{value}, Check::complement};
}

// A command whose second ACK comes when it is done.
Command doneLater(std::uint8_t opcode) {
    Command command{opcode};
    command.reply.end = Reply::End::ack;
    return command;
}

} // namespace

Status Session::eraseSector(std::uint16_t sector) {
    if (!m_hasEraseExt) {
        if (sector > 0xFF)
            return Status::badArgument; // such a chip has no number for it
        const auto low = static_cast<std::uint8_t>(sector);
        return command({wire::opErase, {numbers(&low, 1)}}, Tries::once);
    }
    Group group = number16(0); // the count less 1
    append16(group.bytes, sector);
    return command({wire::opEraseExt, {group}}, Tries::once);
}

Status Session::eraseBank(std::uint16_t code) {
    if (m_hasEraseExt)
        return command({wire::opEraseExt, {number16(code)}}, Tries::once);
    if (code != wire::eraseBank1)
        return Status::refusedCommand; // its one command erases everything, and that is bank 1
    return command({wire::opErase, {oneByte(0xFF)}}, Tries::once);
}

Status Session::eraseBlock(std::uint32_t address) {
    if (!m_hasEraseExt)
        return Status::refusedCommand;
    return command({wire::opEraseExt, {number16(wire::eraseBlock), addressGroup(address)}}, Tries::once);
}

Status Session::firmwareCrc(std::uint32_t address, std::uint16_t sectors, std::array<std::uint8_t, 4> &crc) {
    // No chip has more sectors than that, and the bit above asks for something else.
    const auto count = std::min<std::uint16_t>(sectors, wire::crcOfEach - 1);
    Command request{wire::opFirmwareCrc, {addressGroup(address), number16(count)}};
    request.reply = {false, crc.size(), Reply::End::sum};
    Bytes reply;
    const Status status = exchange(request, reply, Tries::thrice);
    if (status == Status::ok)
        std::copy(reply.begin(), reply.end(), crc.begin());
    return status;
}

Status Session::readUserData(std::uint32_t address, std::size_t length, Bytes &data) {
    const UserDataRead known = std::exchange(m_userData, {});
    if (known.address == address && known.data.size() == length && Clock::now() - known.heard <= timing().believed) {
        data = known.data;
        return Status::ok;
    }
    Command read{wire::opUserDataRead, {addressGroup(address), number16(static_cast<std::uint16_t>(length - 1))}};
    read.reply = {false, length, Reply::End::sum};
    const Status status = askUserData(read, data);
    if (status == Status::ok)
        m_userData = {address, data, Clock::now()};
    return status;
}

// On a bus whose clock is the host's a byte that is lost lets the idle level in at the end, where it stands for the
// check byte, and is the right one where the lost byte was FF. So an answer with that check byte is asked for again
// until two are equal.
Status Session::askUserData(const Command &read, Bytes &data) {
    Status status = exchange(read, data, Tries::thrice);
    for (int left = 2; status == Status::ok && sumOf(data) == idleLevel; --left) {
        if (left == 0)
            return Status::noAnswer;
        m_trace->remark("the check byte is the idle level: once more");
        const Bytes before = data;
        status = exchange(read, data, Tries::thrice);
        if (data == before)
            break;
    }
    return status;
}

Status Session::writeUserData(std::uint32_t address, const std::uint8_t *data, std::size_t length) {
    Command write = doneLater(wire::opUserDataWrite);
    write.groups = {addressGroup(address), number16(static_cast<std::uint16_t>(length - 1))};
    Bytes &group = write.groups.back().bytes;
    group.insert(group.end(), data, data + length);
    return command(write, Tries::once);
}

Status Session::remapSpim(std::uint8_t remap) {
    return command({wire::opRemap, {oneByte(remap)}}, Tries::thrice);
}

Status Session::enableBank3(std::uint8_t flashType, std::uint32_t size, std::uint32_t flashAddress) {
    Group group{{flashType}, Check::sum};
    append32(group.bytes, size);
    append32(group.bytes, flashAddress);
    return command({wire::opEnableBank3, {group}}, Tries::thrice);
}

Status Session::go(std::uint32_t address) {
    return command({wire::opGo, {addressGroup(address)}}, Tries::once);
}

Status Session::reset() {
    return command({wire::opReset}, Tries::once);
}

Status Session::protectAccess() {
    return command(doneLater(wire::opAccessProtect), Tries::once);
}

Status Session::protectAccess(std::uint8_t level) {
    Command protect = doneLater(wire::opAccessProtectLevel);
    protect.groups = {oneByte(level)};
    return command(protect, Tries::once);
}

Status Session::unprotectAccess() {
    return command(doneLater(wire::opAccessUnprotect), Tries::once);
}

Status Session::protectSectors(const std::uint8_t *bits, std::size_t count) {
    return command({wire::opEppProtect, {numbers(bits, count)}}, Tries::once);
}

Status Session::unprotectSectors() {
    return command(doneLater(wire::opEppUnprotect), Tries::once);
}

Status Session::enableSlib(std::uint32_t password, const SlibRange &range) {
    Group group;
    append32(group.bytes, password);
    append16(group.bytes, range.start);
    append16(group.bytes, range.dataStart);
    append16(group.bytes, range.end);
    return command({wire::opEnableSlib, {group}}, Tries::once);
}

Status Session::disableSlib(std::uint32_t password) {
    return command({wire::opDisableSlib, {addressGroup(password)}}, Tries::once);
}

Status Session::getSlibStatus(SlibStatus &status) {
    Command get{wire::opSlibStatus};
    get.reply = {false, 7, Reply::End::sum};
    Bytes reply;
    if (const Status result = exchange(get, reply, Tries::thrice); result != Status::ok)
        return result;
    const auto at = [&](std::size_t i) { return static_cast<std::uint16_t>(reply[i] << 8 | reply[i + 1]); };
    status = {reply[0] == 1, {at(1), at(3), at(5)}};
    return Status::ok;
}

} // namespace zvbl
