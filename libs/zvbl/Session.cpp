#include "libs/zvbl/Session.h"

namespace zvbl {
namespace {

Timing g_timing;

} // namespace

void setTiming(const Timing &timing) {
    g_timing = timing;
}

Timing timing() {
    return g_timing;
}

Status Session::configure(std::uint8_t linkType, const LinkSettings &settings) {
    m_settings = settings;
    if (!isOpen())
        m_kind = findLinkKind(linkType);
    if (m_kind && !m_kind->accepts(settings))
        return Status::badArgument;
    return isOpen() ? m_parts.transport->reconfigure(settings) : Status::ok;
}

Status Session::open() {
    letGo();
    if (!m_kind)
        return Status::cantOpen;
    if (!m_kind->accepts(m_settings))
        return Status::badArgument;
    m_trace = std::make_unique<Trace>(m_settings.portName, m_kind->name);
    LinkParts parts = m_kind->make(m_settings, timing(), *m_trace);
    if (const Status status = parts.transport->open(m_settings); status != Status::ok)
        return status;
    m_parts = std::move(parts);
    m_hasEraseExt = true;
    m_id.reset();
    m_crc = {};
    return Status::ok;
}

Status Session::close() {
    if (!isOpen())
        return Status::notOpen;
    letGo();
    return Status::ok;
}

void Session::letGo() {
    m_parts.framing.reset();
    m_parts.transport.reset();
    forgetCells();
}

Status Session::setTimeout(std::chrono::milliseconds timeout) {
    m_timeout = timeout == timeout.zero() ? defaultTimeout : timeout;
    return Status::ok;
}

// It may be the chip's reset.
Status Session::setLine(ControlLine line, bool high) {
    forgetCells();
    return isOpen() ? m_parts.transport->setLine(line, high) : Status::notOpen;
}

Status Session::transfer(const Command &command, Bytes &reply) {
    if (!isOpen())
        return Status::notOpen;
    m_trace->beginExchange(command.opcode == wire::opRead, command.opcode == wire::opWrite);
    const Status status = m_parts.framing->transfer(command, reply, m_timeout);
    m_trace->endExchange(status == Status::ok);
    if (status != Status::ok || !leavesCells(command.opcode))
        forgetCells();
    return status;
}

// What was heard of them and not asked for yet.
void Session::forgetCells() {
    m_ahead = {};
    m_userData = {};
}

bool Session::isWorthAnotherTry(Status status) {
    return status == Status::noAnswer || status == Status::refused || status == Status::refusedCommand;
}

Status Session::exchange(const Command &command, Bytes &reply, Tries tries) {
    Status status = transfer(command, reply);
    for (int left = static_cast<int>(tries) - 1; left > 0 && isWorthAnotherTry(status); --left)
        status = transfer(command, reply);
    return status;
}

Status Session::command(const Command &command, Tries tries) {
    Bytes nothing;
    return exchange(command, nothing, tries);
}

} // namespace zvbl
