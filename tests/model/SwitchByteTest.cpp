#include <gtest/gtest.h>

#include "OptionBytes.h"
#include "foundation/ShareParameter.h"

namespace {

enum ParityRead { kept, cleared, fromBit7 };

struct SwitchRow {
    int family;
    int start;       // written with every switch off
    int bootWritten; // bit of m_BBFB2
    bool watchdogs;  // written to bits 5 and 6
    bool parity;     // written to bit 7
    int bootRead;
    bool watchdogsRead;
    ParityRead parityRead;
};

const SwitchRow rows[] = {
    {ZV32F421, 0xE8, 4, false, false, 4, false, kept},   {ZV32F425, 0x88, 4, true, false, 4, true, cleared},
    {ZV32F423, 0x88, 4, true, false, 4, true, cleared},  {ZV32A423, 0x88, 4, true, false, 4, true, cleared},
    {ZV32M412, 0x88, 4, true, false, 4, true, cleared},  {ZV32M416, 0x88, 4, true, false, 4, true, cleared},
    {ZV32G412, 0x88, 4, true, false, 4, true, cleared},  {ZV32L021, 0x08, 4, true, true, 4, true, fromBit7},
    {ZV32F405, 0x08, 4, true, true, 4, true, fromBit7},  {ZV32F402, 0x08, 4, true, true, 4, true, fromBit7},
    {ZV32F455, 0x08, 4, true, true, 4, true, fromBit7},  {ZV32F456, 0x08, 4, true, true, 4, true, fromBit7},
    {ZV32F457, 0x08, 4, true, true, 4, true, fromBit7},  {ZV32F490, 0x08, 4, true, true, 4, true, fromBit7},
    {ZV32F435, 0x90, 3, true, false, 3, true, cleared},  {ZV32F437, 0x90, 3, true, false, 3, true, cleared},
    {ZV32F422, 0xF0, 3, false, false, 4, true, cleared}, {ZV32F426, 0xF0, 3, false, false, 4, true, cleared},
    {ZV32F403_1, 0xF0, 3, false, false, 3, false, kept}, {ZV32F403_2, 0xF0, 3, false, false, 3, false, kept},
    {ZV32F413, 0xF0, 3, false, false, 3, false, kept},   {ZV32F403A, 0xF0, 3, false, false, 3, false, kept},
    {ZV32F407, 0xF0, 3, false, false, 3, false, kept},   {ZV32A403A, 0xF0, 3, false, false, 3, false, kept},
    {ZV32F415, 0xF0, 3, false, false, 3, false, kept},   {ZV32WB415, 0xF0, 3, false, false, 3, false, kept},
    {27, 0xF0, 3, false, false, 3, false, kept},         {-1, 0xF0, 3, false, false, 3, false, kept},
};

void encode(CUserSystemData &data, int choice) {
    const auto on = [choice](int bit) { return (choice >> bit & 1) != 0; };
    data.SetSSB(on(0), on(1), on(2), on(3), on(4), on(5), on(6));
}

TEST(SwitchByte, EveryCombinationIsWrittenByTheBitsOfTheFamily) {
    for (const SwitchRow &row : rows) {
        CUserSystemData data;
        data.m_MCUSerials = row.family;
        for (int choice = 0; choice < 128; ++choice) {
            encode(data, choice);
            int expected = row.start | (choice & 7);
            expected |= (choice >> 3 & 1) << row.bootWritten;
            expected |= row.watchdogs ? (choice >> 4 & 3) << 5 : 0;
            expected |= row.parity ? (choice >> 6 & 1) << 7 : 0;
            ASSERT_EQ(data.SSB, expected) << row.family << " " << choice;
        }
    }
}

TEST(SwitchByte, SevenSwitchesAreStoredWhateverTheFamily) {
    CUserSystemData data;
    data.m_MCUSerials = ZV32F421;
    encode(data, 0x7F);
    EXPECT_TRUE(data.m_BnWDT_ATO_EN && data.m_BnDEPSLP_RST && data.m_BnSTDBY_RST && data.m_BBFB2);
    EXPECT_TRUE(data.m_BnWDT_DEPSLP && data.m_BnWDT_STDBY && data.m_SRAM_Parity);
    encode(data, 0);
    EXPECT_FALSE(data.m_BnWDT_ATO_EN || data.m_BnDEPSLP_RST || data.m_BnSTDBY_RST || data.m_BBFB2);
    EXPECT_FALSE(data.m_BnWDT_DEPSLP || data.m_BnWDT_STDBY || data.m_SRAM_Parity);
}

TEST(SwitchByte, EveryValueIsReadByTheBitsOfTheFamily) {
    OptionDevice device(64, 2048, 2);
    for (const SwitchRow &row : rows) {
        CUserSystemData data(row.family, 0, &device.device, nullptr, 0);
        std::vector<BYTE> block = compactOf(data);
        for (int value = 0; value < 256; ++value) {
            const bool parityBefore = value % 2 == 0;
            data.m_SRAM_Parity = parityBefore;
            block[1] = static_cast<BYTE>(value);
            data.Set(block.data(), static_cast<quint32>(block.size()));
            const auto bit = [value](int n) { return (value >> n & 1) != 0; };
            ASSERT_EQ(data.m_BnWDT_ATO_EN, bit(0)) << row.family << " " << value;
            ASSERT_EQ(data.m_BnDEPSLP_RST, bit(1)) << row.family << " " << value;
            ASSERT_EQ(data.m_BnSTDBY_RST, bit(2)) << row.family << " " << value;
            ASSERT_EQ(data.m_BBFB2, bit(row.bootRead)) << row.family << " " << value;
            ASSERT_EQ(data.m_BnWDT_DEPSLP, row.watchdogsRead && bit(5)) << row.family << " " << value;
            ASSERT_EQ(data.m_BnWDT_STDBY, row.watchdogsRead && bit(6)) << row.family << " " << value;
            const bool parity = row.parityRead == kept ? parityBefore : row.parityRead == fromBit7 && bit(7);
            ASSERT_EQ(data.m_SRAM_Parity, parity) << row.family << " " << value;
        }
    }
}

TEST(SwitchByte, AllOffAndAllOnOfZV32L021) {
    CUserSystemData data;
    data.m_MCUSerials = ZV32L021;
    encode(data, 0);
    EXPECT_EQ(data.SSB, 0x08);
    encode(data, 0x7F);
    EXPECT_EQ(data.SSB, 0xFF);
}

TEST(SwitchByte, ReadingDoesNotMirrorWritingOfZV32F422) {
    OptionDevice device(64, 1024, 4);
    CUserSystemData data(ZV32F422, 0, &device.device, nullptr, 0);
    encode(data, 0);
    EXPECT_EQ(data.SSB, 0xF0);
    std::vector<BYTE> block = compactOf(data);
    data.Set(block.data(), static_cast<quint32>(block.size()));
    EXPECT_TRUE(data.m_BnWDT_DEPSLP);
    EXPECT_TRUE(data.m_BnWDT_STDBY);
    EXPECT_TRUE(data.m_BBFB2);
}

} // namespace
