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
    void close() override { pty_.close(); }
    int fd() const override { return pty_.fd(); }
    int watchFd() const override { return pty_.watchFd(); }
    bool take(Nanoseconds now) override;
    bool give(const TimedFrame &frame) override;
    void drain() const override { pty_.drain(); }

private:
    void write(const std::string &text);

    std::string path_;
    Log &log_;
    SlcanAdapter adapter_;
    Pty pty_;
};

} // namespace sim
