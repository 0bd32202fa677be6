// Starting the bootloader, and what it tells about itself and its chip.

#include <algorithm>

#include "libs/zvbl/Session.h"

namespace zvbl {

Status Session::start(const StartSettings &settings) {
    m_id.reset();
    forgetCells();
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
Status Session::askId(Bytes &id) {
    Command get{wire::opGetId};
    get.reply = {true, 0, Reply::End::ack};
    if (const Status status = exchange(get, id, Tries::thrice); status != Status::ok)
        return status;
    const bool isIdentifier = id.size() == wire::shortId || id.size() == wire::longId;
    if (isIdentifier && (!m_id || m_id->size() == id.size()))
        return Status::ok;
    m_trace->remark("not an identifier");
    return Status::noAnswer;
}

// On USART an answer has no checksum: two that differ are settled by a third.
Status Session::getId(Bytes &id) {
    Status status = askId(id);
    if (status == Status::ok && m_id && *m_id != id) {
        m_trace->remark("another identifier than before");
        const Bytes second = id;
        status = askId(id);
        if (status == Status::ok && id != second && id != *m_id)
            status = Status::noAnswer;
    }
    if (status == Status::ok)
        m_id = id;
    return status;
}

Status Session::exchangeToolVersion() {
    Command tool{wire::opToolExchange};
    tool.groups.emplace_back();
    append32(tool.groups.back().bytes, wire::toolVersion);
    return command(tool, Tries::thrice);
}

} // namespace zvbl
