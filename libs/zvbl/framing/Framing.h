#pragma once

#include <cstdint>

#include "libs/zvbl/Command.h"
#include "libs/zvbl/Status.h"
#include "libs/zvbl/Timing.h"

namespace zvbl {

// What ZVBL_Init_BL was given. A link takes from it what it needs.
struct StartSettings {
    std::uint16_t address = 0;
    unsigned long rate = 0;
    std::uint8_t dutyCycle = 0;
};

// How one kind of link carries commands. After a failure it gets back in step with the chip by itself,
// before the next command.
class Framing {
public:
    virtual ~Framing() = default;

    // Brings the bootloader into its command state. noStart: nothing answered within the timeout.
    virtual Status start(const StartSettings &settings, Duration timeout) = 0;

    // Sets the speed of the bus; refusedCommand on a link that has none to set.
    virtual Status setSpeed(unsigned long speed, Duration timeout) = 0;

    // The longest READ and WRITE; `wished` is what the user of the link asks for.
    virtual std::size_t packetSize(std::size_t wished) const { return wished; }

    // Whether READs that follow each other are told so, and then what is wrong with one can show at a later one.
    virtual bool readsInRuns() const { return false; }

    // Whether the link itself makes sure that what is read is what was sent.
    virtual bool guardsReplies() const { return false; }

    // Carries one command out, once. Every exchange with the chip but the start goes through here. The
    // reply comes without its count and its end. The timeout is that of each single wait.
    virtual Status transfer(const Command &command, Bytes &reply, Duration timeout) = 0;
};

} // namespace zvbl
