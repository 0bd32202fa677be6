#pragma once

#include "sim/links/SlcanAdapter.h"
#include "sim/ports/can/CanPort.h"
#include "sim/ports/pty/Pty.h"

namespace sim {

// A serial-line CAN adapter on a pseudo terminal, with the chip at its bus.
class SlcanTerminal : public CanEnd {
public:
    SlcanTerminal(std::string path, CanLine &bus, Log &log);

    bool open(std::string &error) override;
    void close() override { m_pty.close(); }
    int fd() const override { return m_pty.fd(); }
    int watchFd() const override { return m_pty.watchFd(); }
    bool take(Nanoseconds now) override;
    bool give(const TimedFrame &frame) override;
    void drain() const override { m_pty.drain(); }

private:
    void write(const std::string &text);

    std::string m_path;
    Log &m_log;
    SlcanAdapter m_adapter;
    Pty m_pty;
};

} // namespace sim
