// The commands of this project's own.

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Bootloader.h"
#include "sim/bootloader/Groups.h"

namespace sim {

namespace {

Next protectAtLevel(Exchange &x, const Bytes &group) {
    constexpr std::uint8_t low = 1;
    constexpr std::uint8_t high = 2;
    if (group[0] != low && group[0] != high)
        return x.refuse("there is no such protection level");
    const AccessLevel level = group[0] == high ? AccessLevel::high : AccessLevel::low;
    const Outcome allowed = x.chip.checkAccess(level);
    if (!allowed.done())
        return x.refuse(allowed.why);
    x.accept();
    return x.refusedByFault() ? x.refuse("fault") : x.conclude(x.chip.protectAccess(level), Next::reset);
}

Next toolExchange(Exchange &x, const Bytes &) {
    return x.accept();
}

Next crcAddress(Exchange &x, const Bytes &group) {
    x.setAddress(number32(group, 0));
    return x.goOn(x.chip.checkCrc(x.address(), 1));
}

Next crcOfEach(Exchange &x, unsigned sectors) {
    const bool few = sectors > 0 && sectors <= wire::mostCrcs;
    const Outcome outcome = few ? x.chip.checkCrc(x.address(), sectors) : Outcome::refuse("no such number of sectors");
    if (!outcome.done())
        return x.refuse(outcome.why);
    x.accept();
    Bytes answer;
    for (unsigned i = 0; i < sectors; ++i)
        append32(answer, x.chip.crc(x.address() + i * x.chip.sectorSize(x.address()), 1));
    x.sendChecked(answer);
    return Next::end;
}

Next crcCount(Exchange &x, const Bytes &group) {
    const unsigned sectors = number16(group, 0);
    if ((sectors & wire::crcOfEach) != 0)
        return crcOfEach(x, sectors & ~unsigned{wire::crcOfEach});
    const Outcome outcome = sectors == 0 ? Outcome{} : x.chip.checkCrc(x.address(), sectors);
    if (!outcome.done())
        return x.refuse(outcome.why);
    x.accept();
    Bytes answer; // for no sector at all, how large one is
    append32(answer, sectors == 0 ? x.chip.sectorSize(x.address()) : x.chip.crc(x.address(), sectors));
    x.sendChecked(answer);
    return Next::end;
}

Next enableBank3(Exchange &x, const Bytes &group) {
    return x.conclude(x.chip.spim().enable(group[0], number32(group, 1), number32(group, 5)));
}

Next remap(Exchange &x, const Bytes &group) {
    return x.conclude(x.chip.spim().remap(group[0]));
}

// ---- sLib

Next enableSlib(Exchange &x, const Bytes &group) {
    Slib::Area area;
    area.password = number32(group, 0);
    area.start = number16(group, 4);
    area.dataStart = number16(group, 6);
    area.end = number16(group, 8);
    return x.conclude(x.chip.enableSlib(area), Next::reset);
}

Next disableSlib(Exchange &x, const Bytes &group) {
    return x.conclude(x.chip.disableSlib(number32(group, 0)), Next::reset);
}

Next slibStatus(Exchange &x) {
    const Slib::Area &area = x.chip.slib();
    Bytes answer = {static_cast<std::uint8_t>(area.enabled ? 1 : 0)};
    append16(answer, area.start);
    append16(answer, area.dataStart);
    append16(answer, area.end);
    x.accept();
    x.sendChecked(answer);
    return Next::end;
}

Next resetChip(Exchange &x) {
    return x.accept(Next::reset);
}

// ---- user system data

Next userDataAddress(Exchange &x, const Bytes &group) {
    x.setAddress(number32(group, 0));
    const bool there = x.address() == layoutOf(x.chip.facts()).address;
    return x.goOn(there ? Outcome{} : Outcome::refuse("the user system data lies elsewhere"));
}

Next userDataRead(Exchange &x, const Bytes &group) {
    const std::size_t length = number16(group, 0) + std::size_t{1};
    Bytes answer = x.chip.userData();
    if (length > answer.size())
        return x.refuse("the user system data has " + std::to_string(answer.size()) + " bytes");
    answer.resize(length);
    x.accept();
    x.sendChecked(answer);
    return Next::end;
}

Next userDataWrite(Exchange &x, const Bytes &group) {
    constexpr std::size_t head = 2;
    const Bytes bytes = payload(group, head);
    if (bytes.size() != x.chip.facts().userDataLength)
        return x.refuse("the user system data has " + std::to_string(x.chip.facts().userDataLength) + " bytes");
    x.accept();
    if (x.refusedByFault())
        return x.refuse("fault");
    return x.conclude(x.chip.writeUserData(bytes), layoutOf(x.chip.facts()).resetsAfterWrite ? Next::reset : Next::end);
}

} // namespace

const CommandTable &ownCommands() {
    using namespace wire;
    static const CommandTable rows = {
        {opToolExchange, "TOOL_EXCHANGE", Guard::none, awaitGroups, {{exactly<5>, xorSound, toolExchange}}},
        {opAccessProtectLevel,
         "ACCESS_LEVEL_PROTECT",
         Guard::none,
         awaitGroups,
         {{exactly<2>, complementSound, protectAtLevel}}},
        {opFirmwareCrc,
         "FIRMWARE_CRC",
         Guard::access,
         awaitGroups,
         {{exactly<5>, xorSound, crcAddress}, {exactly<3>, xorSound, crcCount}}},
        {opEnableBank3, "ENABLE_BANK3", Guard::access, awaitGroups, {{exactly<10>, xorSound, enableBank3}}},
        {opRemap, "REMAP", Guard::none, awaitGroups, {{exactly<2>, complementSound, remap}}},
        {opEnableSlib, "ENABLE_SLIB", Guard::access, awaitGroups, {{exactly<11>, xorSound, enableSlib}}},
        {opDisableSlib, "DISABLE_SLIB", Guard::access, awaitGroups, {{exactly<5>, xorSound, disableSlib}}},
        {opSlibStatus, "GET_SLIB_STATUS", Guard::none, slibStatus, {}},
        {opReset, "RESET", Guard::none, resetChip, {}},
        {opUserDataRead,
         "USER_DATA_READ",
         Guard::access,
         awaitGroups,
         {{exactly<5>, xorSound, userDataAddress}, {exactly<3>, xorSound, userDataRead}}},
        {opUserDataWrite,
         "USER_DATA_WRITE",
         Guard::access,
         awaitGroups,
         {{exactly<5>, xorSound, userDataAddress}, {countedByTwo, xorSound, userDataWrite}}},
    };
    return rows;
}

} // namespace sim
