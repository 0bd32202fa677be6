#include <numeric>

#include <gtest/gtest.h>

#include "OptionBytes.h"
#include "foundation/ShareParameter.h"

namespace {

using Bytes = std::vector<int>;
using Sectors = std::vector<int>;

// Option bytes of a device, open throughout.
class Protection {
public:
    Protection(int family, unsigned int sectors, unsigned int sectorSize, BYTE sectorsPerBit)
        : m_device(sectors, sectorSize, sectorsPerBit), data(family, 0, &m_device.device, nullptr, 0) {}

    Bytes bytes() const { return Bytes(data.EPP, data.EPP + data.m_iEppLen); }

    // The numbers of the clear bits.
    Sectors clearBits() const {
        Sectors bits;
        for (int g = 0; g < data.m_iEppLen * 8; ++g)
            if ((data.EPP[g / 8] >> g % 8 & 1) == 0)
                bits.push_back(g);
        return bits;
    }

    void fill(BYTE value) { std::fill_n(data.EPP, data.m_iEppLen, value); }
    void protectBit(int g) { data.EPP[g / 8] = static_cast<BYTE>(data.EPP[g / 8] & ~(1 << g % 8)); }

private:
    OptionDevice m_device;

public:
    CUserSystemData data;
};

Sectors range(int first, int last) {
    Sectors sectors(static_cast<std::size_t>(last < first ? 0 : last - first + 1));
    std::iota(sectors.begin(), sectors.end(), first);
    return sectors;
}

Sectors operator+(Sectors left, const Sectors &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// ---- one sector -------------------------------------------------------------------------------

struct SectorRow {
    int family;
    unsigned int sectors;
    unsigned int sectorSize;
    BYTE perBit;
    int sector;
    int bit; // -1: none
};

const SectorRow sectorRows[] = {
    {ZV32F403A, 64, 2048, 2, 0, 0},
    {ZV32F403A, 64, 2048, 2, 1, 0},
    {ZV32F403A, 64, 2048, 2, 2, 1},
    {ZV32F403A, 64, 2048, 2, 15, 7},
    {ZV32F403A, 64, 2048, 2, 16, 8},
    {ZV32F403A, 64, 2048, 2, 47, 23},
    {ZV32F403A, 64, 2048, 2, 48, 24},
    {ZV32F403A, 64, 2048, 2, 60, 30},
    {ZV32F403A, 64, 2048, 2, 61, 30},
    {ZV32F403A, 64, 2048, 2, 62, 31},
    {ZV32F403A, 64, 2048, 2, 63, 31},
    {ZV32F403A, 64, 2048, 2, 64, 31},    // not on the device: the last bit
    {ZV32F403A, 64, 2048, 2, 32768, 31}, // the SPIM
    {ZV32F403A, 64, 2048, 2, -1, -1},
    {ZV32F403A, 512, 2048, 2, 511, 31},
    {ZV32F403A, 8, 2048, 2, 8, 31}, // also where the device ends before that bit
    {ZV32F421, 64, 1024, 9, 63, 15},
    {ZV32F421, 64, 1024, 9, 4, 1},
    {ZV32F415, 128, 2048, 9, 61, 30},
    {ZV32F403A, 64, 2048, 0, 5, 31}, // a map file without sectors per bit
    {ZV32F435, 1008, 4096, 1, 0, 0},
    {ZV32F435, 1008, 4096, 1, 8, 8},
    {ZV32F435, 1008, 4096, 1, 31, 31},
    {ZV32F435, 1008, 4096, 1, 32, 32},
    {ZV32F435, 1008, 4096, 1, 63, 32},
    {ZV32F435, 1008, 4096, 1, 64, 33},
    {ZV32F435, 1008, 4096, 1, 1007, 62},
    {ZV32F435, 1008, 4096, 1, 4127, 159}, // the last sector of the last bit
    {ZV32F435, 1008, 4096, 1, 4128, -1},
    {ZV32F435, 1008, 4096, 1, -1, -1},
    {ZV32F437, 224, 2048, 2, 63, 31},
    {ZV32F437, 224, 2048, 2, 64, 32},
    {ZV32F437, 224, 2048, 2, 127, 32},
    {ZV32F437, 224, 2048, 2, 128, 33},
    {ZV32F437, 224, 2048, 2, 223, 34},
    {ZV32F437, 224, 2048, 1, 40, -1}, // below the boundary and after the 32 bits
    {ZV32F437, 224, 0, 2, 64, -1},    // a map file without a sector size
    {ZV32F437, 224, 0x7FFFFFFF, 2, 64, -1},
};

TEST(SectorProtection, EverySectorHasItsBit) {
    for (const SectorRow &row : sectorRows) {
        Protection protection(row.family, row.sectors, row.sectorSize, row.perBit);
        protection.data.SetEPP(row.sector, true);
        const Sectors expected = row.bit < 0 ? Sectors{} : Sectors{row.bit};
        EXPECT_EQ(protection.clearBits(), expected) << row.family << " sector " << row.sector;
    }
}

TEST(SectorProtection, OpeningASectorSetsItsBitAndNoOther) {
    for (const SectorRow &row : sectorRows) {
        Protection protection(row.family, row.sectors, row.sectorSize, row.perBit);
        protection.fill(0x00);
        protection.data.SetEPP(row.sector, false);
        Protection expected(row.family, row.sectors, row.sectorSize, row.perBit);
        expected.fill(0x00);
        if (row.bit >= 0)
            expected.data.EPP[row.bit / 8] = static_cast<BYTE>(1 << row.bit % 8);
        EXPECT_EQ(protection.bytes(), expected.bytes()) << row.family << " sector " << row.sector;
    }
}

// ---- how many bits a byte has in use ------------------------------------------------------------

struct UsedRow {
    int family;
    unsigned int sectors;
    unsigned int sectorSize;
    BYTE perBit;
    int byte;
    int bits; // 0: not used
};

const UsedRow usedRows[] = {
    {ZV32F403A, 48, 2048, 2, 0, 8}, // exactly three bytes
    {ZV32F403A, 48, 2048, 2, 2, 8},  {ZV32F403A, 48, 2048, 2, 3, 0},  {ZV32F403A, 50, 2048, 2, 3, 1},
    {ZV32F403A, 49, 2048, 2, 3, 1}, // rounded up
    {ZV32F403A, 7, 2048, 2, 0, 4},   {ZV32F403A, 7, 2048, 2, 1, 0},   {ZV32F403A, 64, 2048, 2, 3, 8},
    {ZV32F403A, 512, 2048, 2, 3, 8}, {ZV32F403A, 0, 2048, 2, 0, 0},   {ZV32F403A, 64, 2048, 0, 0, 0},
    {ZV32F435, 1008, 4096, 1, 3, 8}, {ZV32F435, 1008, 4096, 1, 4, 8}, // 976 sectors in groups of 32: 31 bits
    {ZV32F435, 1008, 4096, 1, 6, 8}, {ZV32F435, 1008, 4096, 1, 7, 7}, {ZV32F435, 1008, 4096, 1, 8, 0},
    {ZV32F435, 224, 2048, 2, 4, 3}, // 160 sectors in groups of 64: 3 bits
    {ZV32F435, 224, 2048, 2, 5, 0},  {ZV32F435, 64, 2048, 2, 4, 0},   {ZV32F435, 16, 2048, 2, 4, 0},
    {ZV32F435, 0, 2048, 2, 4, 0},    {ZV32F435, 224, 0, 2, 4, 0},
};

TEST(SectorProtection, AByteKnowsItsBitsInUse) {
    for (const UsedRow &row : usedRows) {
        Protection protection(row.family, row.sectors, row.sectorSize, row.perBit);
        int bits = -1;
        EXPECT_EQ(protection.data.IsEPPnUsed(row.byte, &bits), row.bits != 0) << row.sectors << " byte " << row.byte;
        EXPECT_EQ(bits, row.bits) << row.sectors << " byte " << row.byte;
    }
}

// ---- everything ---------------------------------------------------------------------------------

struct AllRow {
    unsigned int sectors;
    bool bank3;
    Bytes before;
    Bytes after;
};

const AllRow allRows[] = {
    {64, false, {0xFF, 0xFF, 0xFF, 0xFF}, {0x00, 0x00, 0x00, 0x00}},
    {64, true, {0xFF, 0xFF, 0xFF, 0xFF}, {0x00, 0x00, 0x00, 0x00}},
    {48, false, {0xFF, 0xFF, 0xFF, 0x5A}, {0x00, 0x00, 0x00, 0x5A}}, // byte 3 is not in use
    {48, true, {0xFF, 0xFF, 0xFF, 0x5A}, {0x00, 0x00, 0x00, 0x7F}},  // and written all the same
    {52, false, {0xFF, 0xFF, 0xFF, 0x00}, {0x00, 0x00, 0x00, 0xFC}},
    {52, true, {0xFF, 0xFF, 0xFF, 0x00}, {0x00, 0x00, 0x00, 0x7C}},
    {20, false, {0xFF, 0xFF, 0x12, 0x34}, {0x00, 0xFC, 0x12, 0x34}},
    {20, true, {0xFF, 0xFF, 0x12, 0x34}, {0x00, 0xFC, 0x12, 0x7F}},
};

TEST(SectorProtection, ProtectingEverythingClearsTheBitsInUse) {
    for (const AllRow &row : allRows) {
        Protection protection(ZV32F403A, row.sectors, 2048, 2);
        std::copy(row.before.begin(), row.before.end(), protection.data.EPP);
        protection.data.SetEPP(true, row.bank3);
        EXPECT_EQ(protection.bytes(), row.after) << row.sectors << " " << row.bank3;
    }
}

TEST(SectorProtection, ProtectingEverythingOfTwentyBytes) {
    Protection protection(ZV32F435, 224, 2048, 2);
    protection.data.SetEPP(true, false);
    EXPECT_EQ(protection.bytes(), (Bytes{0,    0,    0,    0,    0xF8, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                         0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(SectorProtection, OpeningEverythingSetsEveryByte) {
    for (const bool bank3 : {false, true}) {
        for (const int family : {static_cast<int>(ZV32F403A), static_cast<int>(ZV32F437)}) {
            Protection protection(family, 20, 2048, 2);
            protection.fill(0x12);
            protection.data.SetEPP(false, bank3);
            EXPECT_EQ(protection.bytes(), Bytes(static_cast<std::size_t>(protection.data.m_iEppLen), 0xFF));
        }
    }
}

TEST(SectorProtection, EverythingIsProtectedWhenEveryBitOfThatIsClear) {
    for (const AllRow &row : allRows) {
        Protection protection(ZV32F403A, row.sectors, 2048, 2);
        protection.data.SetEPP(true, row.bank3);
        EXPECT_TRUE(protection.data.GetAllSectorsISEPPStatus(row.bank3));
        for (const int bit : protection.clearBits()) {
            protection.data.EPP[bit / 8] = static_cast<BYTE>(protection.data.EPP[bit / 8] | 1 << bit % 8);
            EXPECT_FALSE(protection.data.GetAllSectorsISEPPStatus(row.bank3)) << row.sectors << " bit " << bit;
            protection.protectBit(bit);
        }
    }
}

TEST(SectorProtection, TheSpimCountsOnlyWhereItIsAskedFor) {
    Protection protection(ZV32F403A, 48, 2048, 2);
    protection.data.SetEPP(true, false);
    EXPECT_TRUE(protection.data.GetAllSectorsISEPPStatus(false));
    EXPECT_FALSE(protection.data.GetAllSectorsISEPPStatus(true));
}

// ---- from bits to sectors -----------------------------------------------------------------------

struct ListRow {
    int family;
    unsigned int sectors;
    unsigned int sectorSize;
    BYTE perBit;
    Sectors bits;
    int items;
    Sectors listed;
};

const ListRow listRows[] = {
    {ZV32F403A, 64, 2048, 2, {}, 64, {}},
    {ZV32F403A, 64, 2048, 2, {0}, 64, {0, 1}},
    {ZV32F403A, 64, 2048, 2, {1, 30}, 64, {2, 3, 60, 61}},
    {ZV32F403A, 66, 2048, 2, {31}, 66, {62, 63, 64, 65}},
    {ZV32F403A, 64, 2048, 2, {31}, 67, {62, 63, 64, 65, 66}}, // and the SPIM after the flash
    {ZV32F403A, 64, 2048, 2, {31, 0}, 65, {0, 1, 62, 63, 64}},
    {ZV32F403A, 8, 2048, 2, {31}, 10, {8, 9}}, // the SPIM alone
    {ZV32F403A, 7, 2048, 2, {3, 4}, 7, {6}},   // up to the end of the device
    {ZV32F421, 64, 1024, 0, {1}, 64, {4, 5, 6, 7}},
    {ZV32F403A, 64, 2048, 0, {1}, 64, {}},
    {ZV32F435, 1008, 4096, 1, {31}, 1008, {31}},
    {ZV32F435, 1008, 4096, 1, {32}, 1008, range(32, 63)},
    {ZV32F435, 1008, 4096, 1, {0, 62}, 1008, Sectors{0} + range(992, 1007)},
    {ZV32F435, 1008, 4096, 1, {63, 159}, 5000, {}}, // after the device, SPIM or not
    {ZV32F437, 224, 2048, 2, {31, 34}, 224, Sectors{62, 63} + range(192, 223)},
    {ZV32F437, 224, 2048, 4, {16}, 224, {}}, // bits after the boundary have no sectors
    {ZV32F437, 224, 0, 2, {0, 32}, 224, {}},
};

TEST(SectorProtection, ListsTheSectorsOfAllClearBits) {
    for (const ListRow &row : listRows) {
        Protection protection(row.family, row.sectors, row.sectorSize, row.perBit);
        for (const int bit : row.bits)
            protection.protectBit(bit);
        EXPECT_EQ(numbers(protection.data.GetEPPMapSectorIndex(row.items)), row.listed)
            << row.family << " " << row.sectors << " " << row.items;
    }
}

struct SharedRow {
    int family;
    unsigned int sectors;
    unsigned int sectorSize;
    BYTE perBit;
    int sector;
    int items;
    Sectors listed;
};

const SharedRow sharedRows[] = {
    {ZV32F403A, 64, 2048, 2, 1, 64, {0, 1}},
    {ZV32F403A, 64, 2048, 2, 60, 64, {60, 61}},
    {ZV32F403A, 64, 2048, 2, 63, 66, {62, 63, 64, 65}},
    {ZV32F403A, 64, 2048, 2, 63, 63, {}},        // after the items
    {ZV32F403A, 7, 2048, 4, 6, 7, {4, 5, 6, 7}}, // all of the bit, also after the end of the device
    {ZV32F403A, 64, 2048, 2, -1, 66, {}},
    {ZV32F403A, 64, 2048, 2, 64, 66, {62, 63, 64, 65, 64, 65}}, // twice
    {ZV32F403A, 64, 2048, 2, 70, 66, {64, 65}},
    {ZV32F403A, 8, 2048, 2, 9, 12, {8, 9, 10, 11}},
    {ZV32F403A, 64, 2048, 2, 64, 64, {}},
    {ZV32F435, 1008, 4096, 1, 5, 1008, {5}},
    {ZV32F435, 1008, 4096, 1, 40, 1008, range(32, 63)},
    {ZV32F435, 1008, 4096, 1, 1000, 1008, range(992, 1007)},
    {ZV32F435, 1008, 4096, 1, 1008, 2000, range(992, 1007)}, // the bit reaches after the device
    {ZV32F435, 1008, 4096, 1, 1024, 2000, {}},
    {ZV32F435, 1008, 4096, 1, -1, 2000, {}},
    {ZV32F437, 224, 2048, 2, 63, 224, {62, 63}},
    {ZV32F437, 224, 2048, 2, 200, 224, range(192, 223)},
    {ZV32F437, 224, 0, 2, 5, 224, {}},
};

TEST(SectorProtection, ListsTheSectorsThatShareABit) {
    for (const SharedRow &row : sharedRows) {
        Protection protection(row.family, row.sectors, row.sectorSize, row.perBit);
        EXPECT_EQ(numbers(protection.data.GetEPPMapSectorIndex(row.sector, row.items)), row.listed)
            << row.family << " sector " << row.sector << " of " << row.items;
    }
}

// ---- from sectors to bits -----------------------------------------------------------------------

struct FilterRow {
    int family;
    unsigned int sectorSize;
    BYTE perBit;
    QList<int> sectors;
    std::vector<int> bits;
};

const FilterRow filterRows[] = {
    {ZV32F403A, 2048, 2, {}, {}},
    {ZV32F403A, 2048, 2, {0, 1, 2, 3}, {0, 1}},
    {ZV32F403A, 2048, 2, {0, 2, 0}, {0, 1, 0}}, // only neighbours are compared
    {ZV32F403A, 2048, 2, {60, 61, 62, 63}, {30, 31}},
    {ZV32F403A, 2048, 2, {62, 64, 0}, {31}}, // ends at the first bit above 31
    {ZV32F403A, 2048, 2, {40000}, {31}},
    {ZV32F403A, 2048, 2, {40000, 32768, 50000}, {31}},
    {ZV32F403A, 2048, 2, {0, 40000, 2, 40001}, {0, 31, 1}},
    {ZV32F403A, 2048, 2, {62, 40000}, {31}},
    {ZV32F403A, 2048, 2, {32767, 40000}, {}}, // a sector after the bits, not the SPIM
    {ZV32F403A, 2048, 2, {-1, 2}, {1}},
    {ZV32F403A, 2048, 0, {0, 40000}, {31}},
    {ZV32F421, 1024, 9, {0, 3, 4, 8}, {0, 1, 2}},
    {ZV32F435, 4096, 1, {0, 1, 31, 32, 63, 64}, {0, 1, 31, 32, 33}},
    {ZV32F435, 4096, 1, {1007}, {62}},
    {ZV32F435, 2048, 2, {62, 63, 64, 127, 128}, {31, 32, 33}},
    {ZV32F435, 4096, 1, {64, 32, 64}, {33, 32, 33}},
    {ZV32F437, 4096, 1, {40000}, {1281}}, // no SPIM number here
    {ZV32F437, 0, 2, {4}, {2}},
    {ZV32F437, 4096, 1, {2147483647}, {67108894}},
};

TEST(SectorProtection, FiltersSectorsIntoBits) {
    for (const FilterRow &row : filterRows) {
        Protection protection(row.family, 1024, row.sectorSize, row.perBit);
        EXPECT_EQ(numbers(protection.data.FilterEPPSectorIndexForEraseProgramProtect(row.sectors)), row.bits)
            << row.family << " " << row.sectors.value(0);
    }
}

} // namespace
