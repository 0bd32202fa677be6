#pragma once

#include "sim/links/usb/DfuDevice.h"
#include "sim/links/usb/UsbCable.h"
#include "tests/sim/Rig.h"

namespace sim {

// A chip at a USB cable on the table, its configuration chosen, with a clock that only the test moves.
class UsbRig {
public:
    explicit UsbRig(const std::string &chipName, const std::vector<std::string> &faultSpecs = {},
                    FlashTime flashTime = {}, bool pace = false);

    // A transfer of literal bytes, its eight setup bytes first; the clock goes on to its end.
    UsbAnswer send(const std::string &setup, const Bytes &out = {});

    // What the device's answer looks like in a conversation.
    static std::string show(const UsbAnswer &answer);

    // Plays a conversation, one line each:
    //   H: setup | data    the host makes a control transfer
    //   C: bytes           it completes with these from the device; "C: done" with none, "C: stall", "C: silent"
    //   wait MS            time goes by
    //   button             the reset button
    //   away, here N       whether the device is on the bus, for the N-th time
    //   # text             a remark
    // Bytes are as in Rig::play. Returns what went wrong, with its line; empty for nothing.
    std::string play(const std::string &conversation);

    std::ostringstream told; // the log
    Faults faults;
    Log log{told, true};
    Chip chip;
    DfuDevice device{chip, faults, log};
    UsbCable cable;
    Nanoseconds now = second;

private:
    std::string line(const std::string &text, std::string &unread);
    std::string presence();
};

} // namespace sim
