#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "OptionBytes.h"
#include "foundation/ShareParameter.h"

namespace {

struct LengthRow {
    int family;
    int bid;
    int sectorSize;
    int compact;
    int data;
    int epp;
};

const LengthRow lengthRows[] = {
    {ZV32F403_1, 0, 2048, 24, 8, 4},
    {ZV32F403_2, 0xFFFF, 4096, 24, 8, 4},
    {ZV32F413, 0, 2048, 24, 8, 4},
    {ZV32F403A, 0, 2048, 24, 8, 4},
    {ZV32F407, 0, 2048, 24, 8, 4},
    {ZV32A403A, 0, 2048, 24, 8, 4},
    {ZV32F415, 0x4601, 1024, 16, 10, 4},
    {ZV32F415, 0x4602, 1024, 512, 506, 4},
    {ZV32F415, 0, 4096, 16, 10, 4},
    {ZV32WB415, 0x4601, 2048, 16, 10, 4},
    {ZV32WB415, 0x4701, 2048, 512, 506, 4},
    {ZV32F421, 0xFFFF, 1024, 256, 250, 4},
    {ZV32F425, 0, 1024, 256, 250, 4},
    {ZV32L021, 0, 1024, 256, 250, 4},
    {ZV32F423, 0, 2048, 256, 250, 4},
    {ZV32M412, 0, 2048, 256, 250, 4},
    {ZV32M416, 0, 2048, 256, 250, 4},
    {ZV32G412, 0, 2048, 256, 250, 4},
    {ZV32A423, 0, 2048, 256, 250, 4},
    {ZV32F405, 0, 2048, 256, 220, 4},
    {ZV32F402, 0, 4096, 256, 220, 4},
    {ZV32F455, 0, 2048, 256, 220, 4},
    {ZV32F456, 0, 2048, 256, 220, 4},
    {ZV32F457, 0, 2048, 256, 220, 4},
    {ZV32F490, 0, 2048, 256, 220, 4},
    {ZV32F435, 0, 2048, 256, 220, 20},
    {ZV32F435, 0, 4096, 2048, 2012, 20},
    {ZV32F435, 0, 4097, 256, 220, 20},
    {ZV32F435, 0xFFFF, 0, 256, 220, 20},
    {ZV32F437, 0, 2048, 256, 220, 20},
    {ZV32F437, 0, 4096, 2048, 2012, 20},
    {ZV32F422, 0, 1024, 256, 249, 4},
    {ZV32F426, 0, 4096, 256, 249, 4},
    // No family: the default layout.
    {0, 0, 4096, 24, 8, 4},
    {3, 0x4602, 4096, 24, 8, 4},
    {6, 0, 4096, 24, 8, 4},
    {10, 0, 4096, 24, 8, 4},
    {27, 0, 4096, 24, 8, 4},
    {33, 0, 4096, 24, 8, 4},
    {255, 0, 4096, 24, 8, 4},
    {-1, 0x4602, 4096, 24, 8, 4},
    {-13, 0, 4096, 24, 8, 4},
};

TEST(Layouts, LengthsGoByFamilyIdentifierAndSectorSize) {
    for (const LengthRow &row : lengthRows) {
        EXPECT_EQ(CUserSystemData::GetUserSystemDataLength(row.family, row.bid, row.sectorSize), row.compact)
            << row.family;
        EXPECT_EQ(CUserSystemData::GetUserSystemDataDATALength(row.family, row.bid, row.sectorSize), row.data)
            << row.family;
        EXPECT_EQ(CUserSystemData::GetUserSystemDataEPPLength(row.family), row.epp) << row.family;
    }
}

// Where a byte of the compact form ends up, typed from the data sheets' side: byte number to value.
using Place = std::function<int(const CUserSystemData &, int)>; // -1: a gap

int key(const CUserSystemData &data, int index) {
    const BYTE keys[] = {data.BANK3KEY0, data.BANK3KEY1, data.BANK3KEY2, data.BANK3KEY3,
                         data.BANK3KEY4, data.BANK3KEY5, data.BANK3KEY6, data.BANK3KEY7};
    return keys[index];
}

int layoutA(const CUserSystemData &data, int n) {
    return n == 0    ? data.FAP
           : n == 1  ? data.SSB
           : n <= 3  ? data.DATA[n - 2]
           : n <= 7  ? data.EPP[n - 4]
           : n == 8  ? data.EOPB0
           : n == 9  ? data.RES1
           : n <= 15 ? data.DATA[n - 8]
                     : key(data, n - 16);
}

int layoutBC(const CUserSystemData &data, int n) {
    return n == 0   ? data.FAP
           : n == 1 ? data.SSB
           : n <= 3 ? data.DATA[n - 2]
           : n <= 7 ? data.EPP[n - 4]
                    : data.DATA[n - 6];
}

int layoutD(const CUserSystemData &data, int n) {
    if (n <= 7)
        return layoutBC(data, n);
    return n >= 38 ? data.DATA[n - 36] : n >= 26 && n <= 29 ? key(data, n - 26) : -1;
}

int layoutE(const CUserSystemData &data, int n) {
    if (n <= 9)
        return layoutA(data, n);
    return n >= 38 ? data.DATA[n - 36] : n <= 25 ? data.EPP[n - 6] : n <= 33 ? key(data, n - 26) : -1;
}

int layoutF(const CUserSystemData &data, int n) {
    return n == 0   ? data.FAP
           : n == 1 ? data.SSB
           : n == 2 ? data.SSB1
           : n == 3 ? data.DATA[0]
           : n <= 7 ? data.EPP[n - 4]
                    : data.DATA[n - 7];
}

struct FormRow {
    int family;
    int bid;
    unsigned int sectorSize;
    int compact;
    Place place;
};

const FormRow formRows[] = {
    {ZV32F403_1, 0, 2048, 24, layoutA},
    {ZV32F403A, 0, 2048, 24, layoutA},
    {27, 0, 2048, 24, layoutA},
    {ZV32F415, 0x4601, 1024, 16, layoutBC},
    {ZV32F415, 0x4602, 2048, 512, layoutBC},
    {ZV32WB415, 0x4701, 2048, 512, layoutBC},
    {ZV32F421, 0, 1024, 256, layoutBC},
    {ZV32M412, 0, 2048, 256, layoutBC},
    {ZV32F405, 0, 2048, 256, layoutD},
    {ZV32F490, 0, 2048, 256, layoutD},
    {ZV32F435, 0, 2048, 256, layoutE},
    {ZV32F437, 0, 4096, 2048, layoutE},
    {ZV32F422, 0, 1024, 256, layoutF},
    {ZV32F426, 0, 1024, 256, layoutF},
};

BYTE pattern(int n) {
    return static_cast<BYTE>(n * 37 + n / 256 * 11 + 5);
}

std::vector<BYTE> patternBlock(int length) {
    std::vector<BYTE> block;
    for (int n = 0; n < length; ++n)
        block.push_back(pattern(n));
    return block;
}

TEST(Layouts, EveryCompactByteHasItsPlace) {
    for (const FormRow &row : formRows) {
        OptionDevice device(64, row.sectorSize, 2);
        std::vector<BYTE> block = patternBlock(row.compact);
        const CUserSystemData data(row.family, row.bid, &device.device, block.data(),
                                   static_cast<quint32>(row.compact));
        ASSERT_EQ(data.m_nUserSystemDataLen, row.compact);
        for (int n = 0; n < row.compact; ++n) {
            const int value = row.place(data, n);
            EXPECT_TRUE(value == -1 || value == pattern(n)) << row.family << " byte " << n;
        }
    }
}

TEST(Layouts, GetGivesBackWhatSetReadAndErasedGaps) {
    for (const FormRow &row : formRows) {
        OptionDevice device(64, row.sectorSize, 2);
        std::vector<BYTE> block = patternBlock(row.compact);
        CUserSystemData data(row.family, row.bid, &device.device, block.data(), static_cast<quint32>(row.compact));
        const std::vector<BYTE> compact = compactOf(data);
        ASSERT_EQ(compact.size(), block.size());
        for (int n = 0; n < row.compact; ++n)
            EXPECT_EQ(compact[n], row.place(data, n) == -1 ? 0xFF : pattern(n)) << row.family << " byte " << n;
    }
}

TEST(Layouts, TheElementFormIsPairsOfValueAndComplement) {
    for (const FormRow &row : formRows) {
        OptionDevice device(64, row.sectorSize, 2);
        std::vector<BYTE> block = patternBlock(row.compact);
        CUserSystemData data(row.family, row.bid, &device.device, block.data(), static_cast<quint32>(row.compact));
        const std::vector<BYTE> element = elementOf(data);
        ASSERT_EQ(element.size(), 4096u);
        for (int n = 0; n < 2048; ++n) {
            const bool filled = n < row.compact && row.place(data, n) != -1;
            EXPECT_EQ(element[2 * n], filled ? pattern(n) : 0xFF) << row.family << " byte " << n;
            EXPECT_EQ(element[2 * n + 1], 0xFF - element[2 * n]) << row.family << " byte " << n;
        }
    }
}

TEST(Layouts, TheElementFormRoundsTrip) {
    for (const FormRow &row : formRows) {
        OptionDevice device(64, row.sectorSize, 2);
        std::vector<BYTE> block = patternBlock(row.compact);
        CUserSystemData data(row.family, row.bid, &device.device, block.data(), static_cast<quint32>(row.compact));
        std::vector<BYTE> element = elementOf(data);
        CUserSystemData other(row.family, row.bid, &device.device, nullptr, 0);
        other.SetElementData(element.data(), static_cast<quint32>(row.compact) * 2);
        EXPECT_EQ(compactOf(other), compactOf(data)) << row.family;
    }
}

// Bytes as they lie on a chip, written out.
TEST(Layouts, AnErasedBlockOfEachFormIsWritten) {
    OptionDevice device(64, 2048, 2);
    CUserSystemData a(ZV32F403A, 0, &device.device, nullptr, 0);
    a.FAP = 0xA5;
    a.EPP[3] = 0x7F;
    a.BANK3KEY7 = 0x77;
    a.DATA[7] = 0x07;
    EXPECT_EQ(compactOf(a),
              (std::vector<BYTE>{0xA5, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF,
                                 0xFF, 0xFF, 0xFF, 0x07, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x77}));
    CUserSystemData b(ZV32F415, 0x4601, &device.device, nullptr, 0);
    b.DATA[9] = 0x09;
    EXPECT_EQ(compactOf(b).at(15), 0x09);
    EXPECT_EQ(compactOf(b).size(), 16u);
    CUserSystemData f(ZV32F422, 0, &device.device, nullptr, 0);
    f.SSB1 = 0x12;
    f.DATA[248] = 0x48;
    EXPECT_EQ(compactOf(f).at(2), 0x12);
    EXPECT_EQ(compactOf(f).at(255), 0x48);
}

TEST(Layouts, TheConstantsCarryTheLengths) {
    using U = CUserSystemData;
    EXPECT_EQ(U::OTP2_MAX_LENGTH, 2048);
    EXPECT_EQ(U::OTP2_LENGTH_ZV32F425 + U::OTP2_LENGTH_ZV32F423 + U::OTP2_LENGTH_ZV32F455_456_457 +
                  U::OTP2_LENGTH_ZV32L021 + U::OTP2_LENGTH_ZV32M412_M416,
              5 * 256);
    EXPECT_EQ(U::OTP2_DATA_LENGTH_ZV32F425 + U::OTP2_DATA_LENGTH_ZV32F423 + U::OTP2_DATA_LENGTH_ZV32L021 +
                  U::OTP2_DATA_LENGTH_ZV32M412_M416_G412,
              4 * 250);
    EXPECT_EQ(U::OTP2_DATA_LENGTH_ZV32F455_456_457, 220);
}

} // namespace
