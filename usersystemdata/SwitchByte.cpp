#include "usersystemdata/SwitchByte.h"

#include "foundation/ShareParameter.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

// The same in every family.
constexpr int watchdogBit = 0;
constexpr int deepSleepResetBit = 1;
constexpr int standbyResetBit = 2;
// Where the family has them.
constexpr int watchdogDeepSleepBit = 5;
constexpr int watchdogStandbyBit = 6;
constexpr int parityBit = 7;

// What reading does to the parity switch.
enum class Parity { Kept, Cleared, Read };

struct Switches {
    BYTE start;           // what writing starts from
    int writtenBootBit;   // of m_BBFB2
    bool writesWatchdogs; // in deep sleep and standby; not read means false
    bool writesParity;
    int readBootBit;
    bool readsWatchdogs;
    Parity parity;
};

constexpr Switches f421 = {0xE8, 4, false, false, 4, false, Parity::Kept};
constexpr Switches f425 = {0x88, 4, true, false, 4, true, Parity::Cleared};
constexpr Switches l021 = {0x08, 4, true, true, 4, true, Parity::Read};
constexpr Switches f435 = {0x90, 3, true, false, 3, true, Parity::Cleared};
// MEANT: reading does not mirror writing.
constexpr Switches f422 = {0xF0, 3, false, false, 4, true, Parity::Cleared};
constexpr Switches others = {0xF0, 3, false, false, 3, false, Parity::Kept};

struct FamilySwitches {
    int family;
    const Switches *switches;
};

// clang-format off
constexpr FamilySwitches families[] = {
    {ZV32F421, &f421}, {ZV32F425, &f425}, {ZV32F423, &f425}, {ZV32A423, &f425}, {ZV32M412, &f425},
    {ZV32M416, &f425}, {ZV32G412, &f425}, {ZV32L021, &l021}, {ZV32F405, &l021}, {ZV32F402, &l021},
    {ZV32F455, &l021}, {ZV32F456, &l021}, {ZV32F457, &l021}, {ZV32F490, &l021}, {ZV32F435, &f435},
    {ZV32F437, &f435}, {ZV32F422, &f422}, {ZV32F426, &f422},
};
// clang-format on

const Switches &switchesOf(int family) {
    for (const FamilySwitches &row : families)
        if (row.family == family)
            return *row.switches;
    return others;
}

bool bitOf(BYTE value, int bit) {
    return (value >> bit & 1) != 0;
}

void setBit(BYTE &value, int bit, bool on) {
    if (on)
        value = static_cast<BYTE>(value | 1 << bit);
}

} // namespace

void decodeSwitches(CUserSystemData &data) {
    const Switches &switches = switchesOf(data.m_MCUSerials);
    data.m_BnWDT_ATO_EN = bitOf(data.SSB, watchdogBit);
    data.m_BnDEPSLP_RST = bitOf(data.SSB, deepSleepResetBit);
    data.m_BnSTDBY_RST = bitOf(data.SSB, standbyResetBit);
    data.m_BBFB2 = bitOf(data.SSB, switches.readBootBit);
    data.m_BnWDT_DEPSLP = switches.readsWatchdogs && bitOf(data.SSB, watchdogDeepSleepBit);
    data.m_BnWDT_STDBY = switches.readsWatchdogs && bitOf(data.SSB, watchdogStandbyBit);
    if (switches.parity != Parity::Kept)
        data.m_SRAM_Parity = switches.parity == Parity::Read && bitOf(data.SSB, parityBit);
}

void encodeSwitches(CUserSystemData &data) {
    const Switches &switches = switchesOf(data.m_MCUSerials);
    BYTE value = switches.start;
    setBit(value, watchdogBit, data.m_BnWDT_ATO_EN);
    setBit(value, deepSleepResetBit, data.m_BnDEPSLP_RST);
    setBit(value, standbyResetBit, data.m_BnSTDBY_RST);
    setBit(value, switches.writtenBootBit, data.m_BBFB2);
    setBit(value, watchdogDeepSleepBit, switches.writesWatchdogs && data.m_BnWDT_DEPSLP);
    setBit(value, watchdogStandbyBit, switches.writesWatchdogs && data.m_BnWDT_STDBY);
    setBit(value, parityBit, switches.writesParity && data.m_SRAM_Parity);
    data.SSB = value;
}
