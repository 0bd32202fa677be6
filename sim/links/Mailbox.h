#pragma once

#include <deque>
#include <optional>

#include "sim/bootloader/Bootloader.h"
#include "sim/links/Passage.h"

namespace sim {

// The chip on a link where every group is one message and the host fetches the answers: they wait until it
// does. A chip that resets or leaves after its last answer stays there until that has been fetched.
class Mailbox {
public:
    explicit Mailbox(Bootloader &bootloader) : m_bootloader(bootloader) {}

    // Whether there is a chip on the link.
    bool there(Nanoseconds now) const { return m_departure.has_value() || m_bootloader.listening(now); }

    // Whether it is at its flash and takes nothing in.
    bool working(Nanoseconds now) const { return now < m_bootloader.busyUntil(); }

    // A message: the opcode with its complement, or the group that belongs next, or a NACK.
    void group(const Bytes &bytes, Nanoseconds now);

    // What the link's own framing answers.
    void answer(std::uint8_t byte, Nanoseconds now);

    // The answer that is next, null for none; and what becomes of its bytes on the way, once they leave.
    Output *next() { return m_answers.empty() ? nullptr : &m_answers.front(); }
    std::optional<Passage> leaving;

    void fetched(Nanoseconds now);   // the host has it
    void throwAway(Nanoseconds now); // all of them

    void reset(Nanoseconds now);
    void losePower(Nanoseconds now);

private:
    void opening(const Bytes &bytes, Nanoseconds now);
    void collect();
    void followDeparture(Nanoseconds now);
    void forget();

    Bootloader &m_bootloader;
    std::deque<Output> m_answers;
    std::optional<Next> m_departure; // a reset or the end, after the last answer
};

} // namespace sim
