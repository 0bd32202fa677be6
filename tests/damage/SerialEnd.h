#pragma once

#include "sim/links/UsartLine.h"
#include "tests/damage/Line.h"

namespace damage {

// What the library's serial port ends at: the one that was made last.
class SerialEnd : public Line {
public:
    explicit SerialEnd(const sim::ChipFacts &facts, const sim::CommandTable *additions = nullptr);
    ~SerialEnd() override;

    virtual void send(const zvbl::Bytes &bytes) = 0;

    // Whether a byte is there now, or comes before the deadline: then that is now.
    virtual bool await(zvbl::TimePoint deadline) { return arrivals.await(deadline); }

    Arrivals<sim::TimedByte> arrivals;
    unsigned baud = 0; // of the port, while it is open

protected:
    void deliver(const std::vector<sim::TimedByte> &bytes);
};

} // namespace damage
