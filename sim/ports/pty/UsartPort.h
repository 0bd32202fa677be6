#pragma once

#include "sim/ports/Port.h"
#include "sim/ports/pty/TerminalLine.h"

namespace sim {

// The serial port of the simulated chip: a pseudo terminal with a link to it.
class UsartPort : public Port {
public:
    UsartPort(const Machine &machine, std::string path);

    bool plugIn(std::string &error) override;
    void unplug() override { pty_.close(); }
    std::string takeReady() override { return std::exchange(ready_, {}); }
    void reset(Nanoseconds now) override;
    void losePower(Nanoseconds now) override;
    bool work(Nanoseconds now, std::string &error) override;
    std::vector<int> fds() const override { return {pty_.fd(), pty_.watchFd()}; }
    std::optional<Nanoseconds> due(Nanoseconds now) override { return line_.due(now); }
    std::optional<Hangup> hangup() const override { return line_.hangup(); }
    void drain() override { pty_.drain(); }

private:
    std::string path_;
    std::string ready_;
    Bootloader bootloader_;
    Pty pty_;
    TerminalLine line_;
};

// The port of --usart.
std::unique_ptr<Port> makeUsartPort(const Machine &machine, const std::string &path, std::string &error);

} // namespace sim
