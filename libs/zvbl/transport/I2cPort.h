#pragma once

#include "libs/zvbl/Bytes.h"
#include "libs/zvbl/transport/DeviceNode.h"
#include "libs/zvbl/transport/Transport.h"

namespace zvbl {

// An I2C bus of Linux, /dev/i2c-N. Each transfer is one message with a stop after it.
//
// How long one transfer may take when the bus is stuck is the matter of the adapter's driver, a second at
// most as a rule. It could be told another limit, but that would hold for all users of the bus, and stay.
class I2cPort : public Transport {
public:
    explicit I2cPort(Trace &trace) : m_trace(trace), m_node(trace) {}

    Status open(const LinkSettings &settings) override;
    Status reconfigure(const LinkSettings &) override { return Status::ok; } // none of them is for a bus
    Status setLine(ControlLine line, bool high) override;

    // One transfer with the target at a 7-bit address; reading fills the whole of `bytes`.
    // refused: not acknowledged, and nothing was taken. noAnswer: it failed, and the target may have taken
    // it all the same. gone: the adapter went away, or does not do such a transfer.
    Status write(std::uint8_t address, const Bytes &bytes);
    Status read(std::uint8_t address, Bytes &bytes);

private:
    Status transfer(std::uint8_t address, std::uint16_t flags, std::uint8_t *bytes, std::size_t count);
    Status judge(int error);

    Trace &m_trace;
    DeviceNode m_node;
    int m_told = 0; // the error that stands in the trace already
    bool m_gone = false;
};

} // namespace zvbl
