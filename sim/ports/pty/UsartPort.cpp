#include "sim/ports/pty/UsartPort.h"

namespace sim {

UsartPort::UsartPort(const Machine &machine, std::string path)
    : m_path(std::move(path)), m_bootloader(machine.chip, machine.faults, machine.log),
      m_line(m_pty, machine.pace, m_bootloader, machine.faults, machine.log) {}

bool UsartPort::plugIn(std::string &error) {
    if (!m_pty.open(m_path, error))
        return false;
    m_ready = m_path;
    return true;
}

void UsartPort::reset(Nanoseconds now) {
    m_line.forget();
    m_bootloader.reset(now);
}

void UsartPort::losePower(Nanoseconds now) {
    m_bootloader.losePower(now);
    m_line.replug();
}

bool UsartPort::work(Nanoseconds now, std::string &) {
    if (m_line.work())
        m_rest.disturb(now);
    return true;
}

std::unique_ptr<Port> makeUsartPort(const Machine &machine, const std::string &path, std::string &) {
    return std::make_unique<UsartPort>(machine, path);
}

} // namespace sim
