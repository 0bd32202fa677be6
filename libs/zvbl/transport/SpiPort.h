#pragma once

#include "libs/zvbl/Bytes.h"
#include "libs/zvbl/transport/DeviceNode.h"
#include "libs/zvbl/transport/Transport.h"

namespace zvbl {

// A chip select of an SPI bus of Linux, /dev/spidevB.C: mode 0, words of 8 bits, highest bit first.
class SpiPort : public Transport {
public:
    explicit SpiPort(Trace &trace) : m_trace(trace), m_node(trace) {}

    Status open(const LinkSettings &settings) override;
    Status reconfigure(const LinkSettings &) override { return Status::ok; } // none of them is for a bus
    Status setLine(ControlLine line, bool high) override;

    // Bits per second, from now on. badArgument: the driver refuses it.
    Status setSpeed(std::uint32_t speed);

    // Sends a message, if it is not empty, then clocks `count` bytes in, as a message of zeros, and appends
    // them; fewer, but one at least, when the driver can't do so many at a time. Both travel in one call,
    // the chip is deselected between them. gone: the driver refuses, or the device went away.
    Status exchange(const Bytes &message, std::size_t count, Bytes &heard);

private:
    Status setUp();

    Trace &m_trace;
    DeviceNode m_node;
    std::uint32_t m_speed = 0;
    std::size_t m_limit = 0; // bytes of one call
};

} // namespace zvbl
