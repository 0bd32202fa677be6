#pragma once

#include <deque>

#include "sim/links/SlcanAdapter.h"
#include "tests/sim/Rig.h"

namespace sim {

// A chip at a CAN bus on the table, with a clock that only the test moves.
class CanRig {
public:
    explicit CanRig(const std::vector<std::string> &faultSpecs = {}, FlashTime flashTime = {}, bool pace = false,
                    const std::string &chipName = "ZV32F403A_1024K");
    virtual ~CanRig() = default;

    void send(const CanFrame &frame);

    // What the chip has sent since the last call.
    std::vector<TimedFrame> received();

    // Plays a conversation, one line each:
    //   H: 031 bytes / ...   the host sends frames; an identifier of 8 digits is a long one, r031 a remote frame
    //   C: 131 bytes / ...   the chip has answered exactly these since the last C; "C: -" is none
    //   speed N              of the host, in bits per second; 0 until then, which fits any
    //   wait MS, button      as on other rigs
    //   told TEXT            the next line of the log; at the end there has to be none left
    //   # text               a remark
    // Returns what went wrong, with its line; empty for nothing.
    std::string play(const std::string &conversation);

    std::ostringstream told;
    Faults faults;
    Log log{told, false};
    Chip chip;
    Bootloader bootloader{chip, faults, log, nullptr, &canCommands()};
    CanProtocol protocol{bootloader, log};
    CanLine line;
    Nanoseconds now = second;
    unsigned speed = 0;

protected:
    virtual void say(const std::string &text); // what stands after H:, cut at the slashes
    virtual std::vector<std::string> heard();  // in the words of C:

private:
    std::string nextTold();
    std::string compare(const std::string &wanted);
    std::string act(const std::string &text);
    std::string playLine(const std::string &text);

    std::deque<std::string> m_unread;
    std::size_t m_toldTo = 0;
};

// The same with a serial-line adapter in front. After H: and C: stand its lines: "t0310", "z"; an answer
// without text is ".", a bell "!".
class AdapterRig : public CanRig {
public:
    using CanRig::CanRig;

    SlcanAdapter adapter{line, log};

protected:
    void say(const std::string &text) override;
    std::vector<std::string> heard() override;

private:
    std::string m_answers;
};

CanFrame parseFrame(const std::string &text);
std::string showFrame(const CanFrame &frame);

} // namespace sim
