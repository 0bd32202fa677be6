#pragma once

#include <vector>

// What sets one family of chips apart from the others, a row for each. What differs from chip to chip within a family
// is in its map file.

// Where the option bytes hold what, and how many there are: usersystemdata/Layouts.cpp.
enum class OptionForm { a, b, c, d, e, f };

// Which bits of the switch byte mean what: usersystemdata/SwitchByte.cpp.
enum class SwitchSet { plain, f421, f425, l021, f435, f422 };

struct OtpArea {
    unsigned int dataAddress;
    int dataLength; // bytes
    unsigned int lockAddress;
    int lockLength; // bytes
};

// Added up in Family::traits.
enum FamilyTrait : unsigned int {
    wideGroups = 1,              // sector protection: after the first 128 KB one bit for each 128 KB
    resetsForOptions = 2,        // takes new option bytes into use only after a reset by command
    restartsBeforeVerify = 4,    // reads back what it holds only after a restart
    firstFirmwareCrc = 8,        // works out its firmware CRC as the first chips do
    blankKeysOpenBank3 = 16,     // blank key bytes: the SPIM is enabled without its encrypted range
    takesAnySpimSector = 32,     // with SPIM enabled any sector number passes
    confirmsHighProtection = 64, // "--efap2" is for ever, and wants "--y"
};

struct Family {
    int series; // a MCUSERIALS value, or one that has no name there
    unsigned int userSystemDataAddress;
    unsigned int eraseBlock; // bytes; 0 where there is no block erase
    int sectorsPerBit;       // of the sector protection; 0 where the map file tells it
    OptionForm optionForm;
    SwitchSet switches;
    OtpArea otp; // all 0 where there is none
    unsigned int traits;

    bool has(FamilyTrait trait) const { return (traits & trait) != 0; }
};

// The series that have a row.
std::vector<int> knownSeries();

// The row of a series; one for the series 0, which no chip has, where there is none.
const Family &familyOf(int series);
