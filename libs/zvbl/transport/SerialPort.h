#pragma once

#include "libs/zvbl/Bytes.h"
#include "libs/zvbl/Timing.h"
#include "libs/zvbl/Trace.h"
#include "libs/zvbl/transport/Transport.h"

namespace zvbl {

// A tty in raw mode: any rate, 5 to 8 data bits, parity, and it is ours alone while it is open.
class SerialPort : public Transport {
public:
    explicit SerialPort(Trace &trace) : m_trace(trace) {}
    ~SerialPort() override;
    SerialPort(const SerialPort &) = delete;
    SerialPort &operator=(const SerialPort &) = delete;

    Status open(const LinkSettings &settings) override;
    Status reconfigure(const LinkSettings &settings) override;
    Status setLine(ControlLine line, bool high) override;

    // Hands the bytes to the operating system, in one piece if it takes them so.
    Status send(const Bytes &bytes, TimePoint deadline);

    // Waits for bytes and appends all that have arrived. noAnswer: none until the deadline; one that is
    // past makes it a look without waiting.
    Status receive(Bytes &bytes, TimePoint deadline);

    // What one character takes on the line, start and stop bits included.
    Duration characterTime() const { return m_characterTime; }

private:
    Status take(const std::string &path);
    Status waitFor(short events, TimePoint deadline);
    Status fail(const std::string &what);

    Trace &m_trace;
    int m_fd = -1;
    Duration m_characterTime{};
};

// Whether a serial line can be set so at all; others must not be handed to a port.
bool isSerialSetting(const LinkSettings &settings);

} // namespace zvbl
