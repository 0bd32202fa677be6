#pragma once

#include "sim/ports/Port.h"
#include "sim/ports/pty/TerminalLine.h"

namespace sim {

// The serial port of the simulated chip: a pseudo terminal with a link to it.
class UsartPort : public Port {
public:
    UsartPort(const Machine &machine, std::string path);

    bool plugIn(std::string &error) override;
    void unplug() override { m_pty.close(); }
    std::string takeReady() override { return std::exchange(m_ready, {}); }
    void reset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;
    bool work(Nanoseconds now, std::string &error) override;
    std::vector<int> fds() const override { return {m_pty.fd(), m_pty.watchFd()}; }
    std::optional<Nanoseconds> due(Nanoseconds) override { return m_line.due(); }
    std::optional<Hangup> hangup() const override { return m_line.hangup(); }
    void drain() override { m_pty.drain(); }

private:
    std::string m_path;
    std::string m_ready;
    Bootloader m_bootloader;
    Pty m_pty;
    TerminalLine m_line;
};

// The port of --usart.
std::unique_ptr<Port> makeUsartPort(const Machine &machine, const std::string &path, std::string &error);

} // namespace sim
