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
    int fd() const override { return socket_; }
    int watchFd() const override { return timer_; }
    bool take(Nanoseconds now) override;
    bool give(const TimedFrame &frame) override;

private:
    void leave();
    bool read(CanFrame &frame);

    std::string interface_;
    CanLine &bus_;
    Log &log_;
    int socket_ = -1;
    int timer_ = -1; // there while the interface is not
};

} // namespace sim
