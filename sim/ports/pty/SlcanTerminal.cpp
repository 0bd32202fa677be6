#include "sim/ports/pty/SlcanTerminal.h"

namespace sim {

SlcanTerminal::SlcanTerminal(std::string path, CanLine &bus, Log &log)
    : m_path(std::move(path)), m_log(log), m_adapter(bus, log) {}

bool SlcanTerminal::open(std::string &error) {
    m_adapter.powerOn();
    return m_pty.open(m_path, error);
}

bool SlcanTerminal::take(Nanoseconds now) {
    std::uint8_t bytes[4096];
    const std::size_t length = m_pty.read(bytes, sizeof bytes, now);
    m_pty.followClients(now);
    if (length == 0)
        return false;
    write(m_adapter.receive({reinterpret_cast<const char *>(bytes), length}, now));
    return true;
}

bool SlcanTerminal::give(const TimedFrame &frame) {
    write(m_adapter.hear(frame));
    return true;
}

void SlcanTerminal::write(const std::string &text) {
    if (!text.empty() && !m_pty.write({text.begin(), text.end()}))
        m_log.note("characters for the host were lost: nobody reads");
}

} // namespace sim
