#pragma once

#include "sim/links/CanLine.h"
#include "sim/ports/Lateness.h"
#include "sim/ports/Port.h"

namespace sim {

// Where frames of a CAN bus come from and go to: the part in which the ports of CAN differ.
class CanEnd {
public:
    virtual ~CanEnd() = default;

    // Makes the end. False and a message when it cannot.
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
class CanPort : public Port {
public:
    // The port is told of as "ready NAME".
    CanPort(const Machine &machine, std::string name);

    CanLine &bus() { return m_line; }
    void lead(std::unique_ptr<CanEnd> end) { m_end = std::move(end); } // to the bus; before anything else

    bool plugIn(std::string &error) override;
    void unplug() override { m_end->close(); }
    std::string takeReady() override { return std::exchange(m_ready, {}); }
    void reset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;
    bool work(Nanoseconds now, std::string &error) override;
    std::vector<int> fds() const override { return {m_end->fd(), m_end->watchFd()}; }
    std::optional<Nanoseconds> due(Nanoseconds now) override;
    std::optional<Hangup> hangup() const override;
    void drain() override { m_end->drain(); }

private:
    void giveToHost();

    const std::string m_name;
    const bool m_pace;
    std::string m_ready;
    Bootloader m_bootloader;
    CanProtocol m_protocol;
    CanLine m_line;
    std::unique_ptr<CanEnd> m_end;
    Lateness m_lateness;
    Nanoseconds m_lastDue = 0;   // of the frames that the host has
    Nanoseconds m_notBefore = 0; // the end could not take a frame
};

// A port with an end of that kind.
template <class End>
std::unique_ptr<Port> makeCanPort(const Machine &machine, const std::string &name, std::string &) {
    auto port = std::make_unique<CanPort>(machine, name);
    port->lead(std::make_unique<End>(name, port->bus(), machine.log));
    return port;
}

} // namespace sim
