#pragma once

#include "sim/ports/can/CanPort.h"

namespace sim {

// A CAN interface of the kernel. The chip is one of the stations of its bus; the speed of that is the
// business of whoever has set the interface up.
class CanInterface : public CanEnd {
public:
    CanInterface(std::string interface, CanLine &bus, Log &log);
    ~CanInterface() override { close(); }
    CanInterface(const CanInterface &) = delete;
    CanInterface &operator=(const CanInterface &) = delete;

    bool open(std::string &error) override;
    void close() override;
    int fd() const override { return m_socket; }
    int watchFd() const override { return m_timer; }
    bool take(Nanoseconds now) override;
    bool give(const TimedFrame &frame) override;

private:
    void leave();
    bool read(CanFrame &frame);

    std::string m_interface;
    CanLine &m_bus;
    Log &m_log;
    int m_socket = -1;
    int m_timer = -1; // there while the interface is not
};

} // namespace sim
