// The commands that there are on CAN alone.

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Bootloader.h"
#include "sim/bootloader/Groups.h"

namespace sim {

namespace {

constexpr unsigned speeds[] = {125000, 250000, 500000, 1000000, 100000, 50000, 20000, 800000}; // codes from 1 up

Next setSpeed(Exchange &x, const Bytes &group) {
    constexpr unsigned firstCode = 1;
    const unsigned index = group[0] - firstCode;
    if (index >= sizeof speeds / sizeof speeds[0])
        return x.refuse("there is no such speed");
    const Next next = x.accept();
    x.changeLinkSpeed(speeds[index]);
    return next;
}

} // namespace

const CommandTable &canCommands() {
    static const CommandTable rows = {
        {wire::opSetSpeed, "SET_SPEED", Guard::none, awaitGroups, {{exactly<2>, complementSound, setSpeed}}},
    };
    return rows;
}

} // namespace sim
