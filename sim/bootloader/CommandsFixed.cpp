// The commands of the fixed convention.

#include "libs/zvbl/wire/Wire.h"
#include "sim/bootloader/Bootloader.h"
#include "sim/bootloader/Groups.h"

namespace sim {

namespace {

std::uint8_t countByte(std::size_t value) {
    return static_cast<std::uint8_t>(value);
}

// ---- GET, GET_VER_ROPS, GET_ID

Next get(Exchange &x) {
    Bytes reply = x.supported;
    reply.insert(reply.begin(), {countByte(reply.size()), x.chip.facts().version});
    x.accept();
    x.send(reply);
    return x.accept();
}

Next getVersion(Exchange &x) {
    const ChipFacts &chip = x.chip.facts();
    x.accept();
    x.send({chip.version, chip.bidReserve, chip.bid});
    return x.accept();
}

Next getId(Exchange &x) {
    Bytes reply = identifierOf(x.chip.facts());
    reply.insert(reply.begin(), countByte(reply.size() - 1));
    x.accept();
    x.send(reply);
    return x.accept();
}

// ---- READ, WRITE, GO

Next readAddress(Exchange &x, const Bytes &group) {
    x.setAddress(number32(group, 0));
    return x.goOn(x.chip.checkRead(x.address(), 1));
}

Next readLength(Exchange &x, const Bytes &group) {
    Bytes bytes;
    const Outcome outcome = x.chip.read(x.address(), group[0] + std::size_t{1}, bytes);
    if (!outcome.done())
        return x.refuse(outcome.why);
    x.accept();
    x.send(bytes);
    return Next::end;
}

Next writeAddress(Exchange &x, const Bytes &group) {
    x.setAddress(number32(group, 0));
    return x.goOn(x.chip.checkWrite(x.address(), 1));
}

Next writeData(Exchange &x, const Bytes &group) {
    return x.conclude(x.chip.write(x.address(), payload(group, 1)));
}

Next go(Exchange &x, const Bytes &group) {
    x.setAddress(number32(group, 0));
    const Outcome outcome = x.chip.checkGo(x.address());
    if (!outcome.done())
        return x.refuse(outcome.why);
    return x.accept(x.chip.goResets(x.address()) ? Next::reset : Next::leave);
}

// ---- ERASE, ERASE_EXT

constexpr std::uint8_t eraseAll = 0xFF;

std::size_t eraseLength(const Bytes &arrived) {
    return !arrived.empty() && arrived[0] == eraseAll ? 2 : countedByByte(arrived);
}

bool eraseSound(const Bytes &group) {
    return group[0] == eraseAll ? group[1] == 0 : xorSound(group);
}

Next erase(Exchange &x, const Bytes &group) {
    if (group[0] == eraseAll)
        return x.conclude(x.chip.eraseBank(Bank::oneAndTwo));
    const Bytes numbers = payload(group, 1);
    return x.conclude(x.chip.eraseSectors({numbers.begin(), numbers.end()}));
}

std::size_t eraseExtLength(const Bytes &arrived) {
    if (arrived.size() < 2)
        return 2;
    const std::size_t count = number16(arrived, 0);
    return count >= wire::eraseBlock ? 3 : 2 + (count + 1) * 2 + 1;
}

Next eraseExt(Exchange &x, const Bytes &group) {
    switch (number16(group, 0)) {
    case wire::eraseEverything: return x.conclude(x.chip.eraseBank(Bank::oneAndTwo));
    case wire::eraseBank1: return x.conclude(x.chip.eraseBank(Bank::one));
    case wire::eraseBank2: return x.conclude(x.chip.eraseBank(Bank::two));
    case wire::eraseBank3: return x.conclude(x.chip.eraseBank(Bank::three));
    case wire::eraseBlock: return x.goOn();
    default: break;
    }
    std::vector<unsigned> sectors;
    for (std::size_t i = 2; i + 2 < group.size(); i += 2)
        sectors.push_back(number16(group, i));
    return x.conclude(x.chip.eraseSectors(sectors));
}

Next eraseBlock(Exchange &x, const Bytes &group) {
    x.setAddress(number32(group, 0));
    return x.conclude(x.chip.eraseBlock(x.address()));
}

// ---- protection

Next protectBits(Exchange &x, const Bytes &group) {
    return x.conclude(x.chip.protectBits(payload(group, 1)), Next::reset);
}

// The opcode is answered at once, the work by a second answer.
template <Outcome (*Work)(Chip &)>
Next ackThenWork(Exchange &x) {
    x.accept();
    return x.refusedByFault() ? x.refuse("fault") : x.conclude(Work(x.chip), Next::reset);
}

Outcome unprotectBits(Chip &chip) {
    return chip.unprotectBits();
}
Outcome protectAccess(Chip &chip) {
    return chip.protectAccess(AccessLevel::low);
}
Outcome unprotectAccess(Chip &chip) {
    return chip.unprotectAccess();
}

} // namespace

const CommandTable &fixedCommands() {
    using namespace wire;
    static const CommandTable rows = {
        {opGet, "GET", Guard::none, get, {}},
        {opGetVerRops, "GET_VER_ROPS", Guard::none, getVersion, {}},
        {opGetId, "GET_ID", Guard::none, getId, {}},
        {opRead,
         "READ",
         Guard::access,
         awaitGroups,
         {{exactly<5>, xorSound, readAddress}, {exactly<2>, complementSound, readLength}}},
        {opGo, "GO", Guard::access, awaitGroups, {{exactly<5>, xorSound, go}}},
        {opWrite,
         "WRITE",
         Guard::access,
         awaitGroups,
         {{exactly<5>, xorSound, writeAddress}, {countedByByte, xorSound, writeData}}},
        {opErase, "ERASE", Guard::access, awaitGroups, {{eraseLength, eraseSound, erase}}},
        {opEraseExt,
         "ERASE_EXT",
         Guard::access,
         awaitGroups,
         {{eraseExtLength, xorSound, eraseExt}, {exactly<5>, xorSound, eraseBlock}}},
        {opEppProtect, "ERASEPROGRAM_PROTECT", Guard::access, awaitGroups, {{countedByByte, xorSound, protectBits}}},
        {opEppUnprotect, "ERASEPROGRAM_PERM_UNPROTECT", Guard::access, ackThenWork<unprotectBits>, {}},
        {opAccessProtect, "ACCESS_PROTECT", Guard::none, ackThenWork<protectAccess>, {}},
        {opAccessUnprotect, "ACCESS_PERM_UNPROTECT", Guard::high, ackThenWork<unprotectAccess>, {}},
    };
    return rows;
}

} // namespace sim
