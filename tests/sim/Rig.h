#pragma once

#include <sstream>
#include <stdexcept>
#include <string>

#include "sim/links/UsartLine.h"

namespace sim {

// A chip on the table, with a clock that only the test moves.
class Rig {
public:
    explicit Rig(const std::string &chipName, const std::vector<std::string> &faultSpecs = {}, FlashTime flashTime = {},
                 std::size_t spimSize = 1024 * 1024);

    // The bytes go to the chip one by one, at the present time; baud 0 takes no time.
    void send(const Bytes &bytes, unsigned baud = 0);

    // What the chip has sent since the last call.
    std::vector<TimedByte> received();

    // Plays a conversation, one line each:
    //   H: bytes           the host sends them
    //   C: bytes           the chip has answered exactly these since the last C; "C: -" is no answer
    //   wait MS            time goes by
    //   button             the reset button
    //   # text             a remark
    // Bytes are hexadecimal; FF*12 is twelve times FF. Returns what went wrong, with its line; empty for nothing.
    std::string play(const std::string &conversation);

    std::ostringstream told; // the log
    Faults faults;
    Log log{told, true};
    Chip chip;
    Bootloader bootloader{chip, faults, log};
    UsartProtocol protocol{bootloader};
    UsartLine line{protocol, faults};
    Nanoseconds now = second;
};

// From specifications that are right.
Faults makeFaults(const std::vector<std::string> &specs);

Bytes parseBytes(const std::string &text);
std::string showBytes(const Bytes &bytes);

} // namespace sim
