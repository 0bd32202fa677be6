// Starting the bootloader, and what it tells about itself and its chip.

#include <algorithm>

#include "libs/zvbl/Session.h"

namespace zvbl {

Status Session::start(const StartSettings &settings) {
    m_idLength.reset();
    return isOpen() ? m_parts.framing->start(settings, m_timeout) : Status::notOpen;
}

Status Session::setSpeed(unsigned long speed) {
    return isOpen() ? m_parts.framing->setSpeed(speed, m_timeout) : Status::notOpen;
}

Status Session::getCapabilities(Capabilities &capabilities) {
    Command get{wire::opGet};
    get.reply = {true, 0, Reply::End::ack};
    Bytes reply;
    if (const Status status = exchange(get, reply, Tries::thrice); status != Status::ok)
        return status;
    capabilities.version = reply.front();
    capabilities.opcodes.assign(reply.begin() + 1, reply.end());
    const auto has = [&](std::uint8_t opcode) {
        return std::count(capabilities.opcodes.begin(), capabilities.opcodes.end(), opcode) > 0;
    };
    m_crc.listed = has(wire::opFirmwareCrc);
    m_crc.doubtful = m_crc.listed ? Bytes{} : reply;
    m_hasEraseExt = has(wire::opEraseExt) || !has(wire::opErase);
    return Status::ok;
}

Status Session::getVersion(Version &version) {
    Command get{wire::opGetVerRops};
    get.reply = {false, 3, Reply::End::ack};
    Bytes reply;
    if (const Status status = exchange(get, reply, Tries::thrice); status != Status::ok)
        return status;
    version = {reply[0], reply[1], reply[2]};
    return Status::ok;
}

// The caller asks twice, for the length and for the bytes, and has room for the length it was told: a
// chip that answers another one the second time is not believed, nor one whose identifier is none.
Status Session::getId(Bytes &id) {
    Command get{wire::opGetId};
    get.reply = {true, 0, Reply::End::ack};
    if (const Status status = exchange(get, id, Tries::thrice); status != Status::ok)
        return status;
    const bool isIdentifier = id.size() == wire::shortId || id.size() == wire::longId;
    if (!isIdentifier || (m_idLength && *m_idLength != id.size())) {
        m_trace->remark("not an identifier");
        return Status::noAnswer;
    }
    m_idLength = id.size();
    return Status::ok;
}

Status Session::exchangeToolVersion() {
    Command tool{wire::opToolExchange};
    tool.groups.emplace_back();
    append32(tool.groups.back().bytes, wire::toolVersion);
    return command(tool, Tries::thrice);
}

} // namespace zvbl
