#pragma once

#include <functional>

#include "sim/ports/Port.h"
#include "sim/program/Signals.h"

namespace sim {

// Serves one port: waiting, signals, the pause in which the state is saved, unplugging and plugging in again.
class PortLoop {
public:
    // `idle` is called when the port has been quiet for a moment.
    PortLoop(Port &port, int signals, std::function<void()> idle)
        : m_port(port), m_signals(signals), m_idle(std::move(idle)) {}

    // Until a signal ends it or the port is unplugged for good. False and a message when the port cannot be made.
    bool run(std::string &error);

private:
    bool plugIn(std::string &error);
    void wait();
    Wish followSignals();
    bool work(std::string &error);
    bool stayAway(const Hangup &hangup);
    std::optional<Hangup> hangup();
    void tellReady();
    void restIfIdle(Nanoseconds now);

    Port &m_port;
    int m_signals;
    std::function<void()> m_idle;
};

} // namespace sim
