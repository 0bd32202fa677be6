#pragma once

#include "sim/ports/can/CanServer.h"

namespace sim {

// A CAN interface of the kernel. The chip is one of the stations of its bus; the speed of that is the
// business of whoever has set the interface up.
class CanFront : public CanPort {
public:
    CanFront(std::string interface, CanLine &bus, Log &log);
    ~CanFront() override { close(); }
    CanFront(const CanFront &) = delete;
    CanFront &operator=(const CanFront &) = delete;

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

// The front of --can.
bool serveCan(Machine &machine, const std::string &interface, std::string &error);

} // namespace sim
