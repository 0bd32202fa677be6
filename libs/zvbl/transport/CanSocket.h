#pragma once

#include <string>

#include <linux/can.h>

#include "libs/zvbl/Trace.h"
#include "libs/zvbl/transport/CanBus.h"

namespace zvbl {

// A network interface of the kernel's own CAN (SocketCAN), by its name. It has to be up; its rate needs
// CAP_NET_ADMIN to be changed, and gets back what it was when the link is closed. Other programs may use
// the interface meanwhile.
class CanSocket : public CanBus {
public:
    explicit CanSocket(Trace &trace) : m_trace(trace) {}
    ~CanSocket() override;
    CanSocket(const CanSocket &) = delete;
    CanSocket &operator=(const CanSocket &) = delete;

    static bool isInterface(const std::string &name);

    Status open(const LinkSettings &settings) override;
    Status reconfigure(const LinkSettings &) override { return Status::ok; } // nothing of it is a bus's
    Status setLine(ControlLine line, bool high) override;

    Status send(const CanFrame &frame, TimePoint deadline) override;
    Status receive(CanFrame &frame, TimePoint deadline) override;
    unsigned bitRate() const override { return m_bitRate; }
    Status mayChangeBitRate() override;
    Status setBitRate(unsigned bitsPerSecond) override;

private:
    int bindSocket();
    void closeSocket();
    Status await(TimePoint deadline);
    Status judge(const can_frame &error);
    Status fail(const std::string &what);

    Trace &m_trace;
    int m_index = 0;
    int m_fd = -1;
    unsigned m_bitRate = 0;
    unsigned m_foundRate = 0; // when the link was opened
    bool m_opened = false;
    bool m_gone = false;
};

} // namespace zvbl
