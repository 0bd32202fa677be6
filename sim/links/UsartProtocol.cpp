#include "sim/links/UsartProtocol.h"

#include <algorithm>

#include "libs/zvbl/wire/Wire.h"

namespace sim {

namespace {
constexpr Nanoseconds frameLimit = wire::frameLimitMs * millisecond;
}

UsartProtocol::UsartProtocol(Bootloader &bootloader) : m_bootloader(bootloader), m_resets(bootloader.resets()) {}

void UsartProtocol::followReset() {
    if (m_resets != m_bootloader.resets()) {
        m_resets = m_bootloader.resets();
        m_synchronised = false;
        m_opcode.reset();
    }
}

std::vector<TimedByte> UsartProtocol::takeOutput() {
    std::vector<TimedByte> bytes;
    for (const Output &output : m_bootloader.takeOutput())
        for (const std::uint8_t byte : output.bytes)
            bytes.push_back({byte, output.at});
    return bytes;
}

void UsartProtocol::sent(Nanoseconds at) {
    m_last = std::max(m_last, at);
}

void UsartProtocol::dropIfLate(Nanoseconds now) {
    if (inCommand() && now - m_last > frameLimit) {
        m_bootloader.drop("dropped, its next byte came too late");
        m_opcode.reset();
    }
}

void UsartProtocol::receive(std::uint8_t byte, Nanoseconds now) {
    followReset();
    now = std::max(now, m_bootloader.busyUntil());
    if (!m_bootloader.listening(now))
        return;
    if (!m_synchronised) {
        if (byte == wire::sync) {
            m_synchronised = true;
            m_bootloader.answer(wire::ack, now);
        }
        return;
    }
    dropIfLate(now);
    m_last = std::max(m_last, now);
    if (m_bootloader.idle())
        opening(byte, now);
    else
        m_bootloader.feed(byte, now);
}

void UsartProtocol::opening(std::uint8_t byte, Nanoseconds now) {
    if (!m_opcode) {
        if (byte == wire::sync)
            m_bootloader.answer(wire::nack, now);
        else
            m_opcode = byte;
        return;
    }
    const std::uint8_t opcode = *m_opcode;
    m_opcode.reset();
    if ((opcode ^ byte) == 0xFF)
        m_bootloader.command(opcode, now);
    else
        m_bootloader.refuse("an opcode with a wrong complement", now);
}

} // namespace sim
