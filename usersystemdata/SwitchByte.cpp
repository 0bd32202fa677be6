#include "usersystemdata/SwitchByte.h"

#include "device/Families.h"
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
enum class Parity { kept, cleared, read };

struct Switches {
    BYTE start;           // what writing starts from
    int writtenBootBit;   // of m_BBFB2
    bool writesWatchdogs; // in deep sleep and standby; not read means false
    bool writesParity;
    int readBootBit;
    bool readsWatchdogs;
    Parity parity;
};

// In the order of SwitchSet.
// clang-format off
constexpr Switches switchSets[] = {
    {0xF0, 3, false, false, 3, false, Parity::kept},    // plain
    {0xE8, 4, false, false, 4, false, Parity::kept},    // f421
    {0x88, 4, true,  false, 4, true,  Parity::cleared}, // f425
    {0x08, 4, true,  true,  4, true,  Parity::read},    // l021
    {0x90, 3, true,  false, 3, true,  Parity::cleared}, // f435
    {0xF0, 3, false, false, 4, true,  Parity::cleared}, // f422. MEANT: reading does not mirror writing
};
// clang-format on

const Switches &switchesOf(const CUserSystemData &data) {
    return switchSets[static_cast<int>(familyOf(data.m_MCUSerials).switches)];
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
    const Switches &switches = switchesOf(data);
    data.m_BnWDT_ATO_EN = bitOf(data.SSB, watchdogBit);
    data.m_BnDEPSLP_RST = bitOf(data.SSB, deepSleepResetBit);
    data.m_BnSTDBY_RST = bitOf(data.SSB, standbyResetBit);
    data.m_BBFB2 = bitOf(data.SSB, switches.readBootBit);
    data.m_BnWDT_DEPSLP = switches.readsWatchdogs && bitOf(data.SSB, watchdogDeepSleepBit);
    data.m_BnWDT_STDBY = switches.readsWatchdogs && bitOf(data.SSB, watchdogStandbyBit);
    if (switches.parity != Parity::kept)
        data.m_SRAM_Parity = switches.parity == Parity::read && bitOf(data.SSB, parityBit);
}

void encodeSwitches(CUserSystemData &data) {
    const Switches &switches = switchesOf(data);
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
