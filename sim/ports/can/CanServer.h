#pragma once

#include "sim/links/CanLine.h"
#include "sim/program/Fronts.h"
#include "sim/program/Signals.h"

namespace sim {

// Where frames of a CAN bus come from and go to: the part in which the fronts of CAN differ.
class CanPort {
public:
    virtual ~CanPort() = default;

    // Makes the port. False and a message when it cannot.
    virtual bool open(std::string &error) = 0;
    virtual void close() = 0;

    // To be waited for; -1 for none.
    virtual int fd() const = 0;
    virtual int watchFd() const { return -1; }

    // Hands on what has come from the host. Whether something had.
    virtual bool take(Nanoseconds now) = 0;

    // A frame for the host. False when it has to be offered again a moment later.
    virtual bool give(const TimedFrame &frame) = 0;

    // Waits a moment until the host has what was given.
    virtual void drain() const {}
};

// A chip at a CAN bus, at the real time.
class CanServer {
public:
    explicit CanServer(Machine &machine);

    CanLine &bus() { return line_; }

    // Serves the port, which is told of as "ready NAME", until a signal ends it or it is unplugged for good.
    bool serve(CanPort &port, const std::string &name, std::string &error);

private:
    bool plugIn(CanPort &port, const std::string &name, std::string &error);
    Wish followSignals();
    void wait(const CanPort &port);
    void giveToHost(CanPort &port);
    void restIfIdle();
    void traffic(Nanoseconds now);

    Machine &machine_;
    Bootloader bootloader_;
    CanProtocol protocol_;
    CanLine line_;
    Nanoseconds lastTraffic_ = 0;
    Nanoseconds notBefore_ = 0; // the port could not take a frame
    bool rested_ = true;
};

} // namespace sim
