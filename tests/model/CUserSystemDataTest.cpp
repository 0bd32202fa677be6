#include "usersystemdata/CUserSystemData.h"

#include <gtest/gtest.h>

#include "OptionBytes.h"
#include "foundation/ShareParameter.h"

namespace {

struct SectorsRow {
    int family;
    BYTE sectors;
};

TEST(CUserSystemData, SomeFamiliesHaveTheirOwnSectorsPerBit) {
    OptionDevice device(64, 2048, 7);
    const SectorsRow rows[] = {{ZV32F415, 2},  {ZV32WB415, 2}, {ZV32F421, 4}, {ZV32F425, 4}, {ZV32L021, 4},
                               {ZV32F403A, 7}, {ZV32F435, 7},  {ZV32F423, 7}, {ZV32M412, 7}, {27, 7}};
    for (const SectorsRow &row : rows)
        EXPECT_EQ(CUserSystemData(row.family, 0, &device.device, nullptr, 0).m_bSectorsPerBit, row.sectors)
            << row.family;
}

TEST(CUserSystemData, TakesItsFactsFromTheDevice) {
    OptionDevice device(64, 2048, 2);
    const CUserSystemData data(ZV32F435, 0x1234, &device.device, nullptr, 0);
    EXPECT_EQ(data.m_ObDevice, &device.device);
    EXPECT_EQ(data.m_nSectorNums, 64);
    EXPECT_EQ(data.m_SectorSize, 2048);
    EXPECT_EQ(data.m_MCUSerials, 13);
    EXPECT_EQ(data.m_BIDVersion, 0x1234);
    EXPECT_EQ(data.m_nUserSystemDataLen, 256);
    EXPECT_EQ(data.m_iEppLen, 20);
}

TEST(CUserSystemData, LivesWithoutADeviceOrAMap) {
    CDevice bare;
    const CUserSystemData withoutMap(ZV32F403A, 0, &bare, nullptr, 0);
    EXPECT_EQ(withoutMap.m_nSectorNums, 0);
    const CUserSystemData withoutDevice(ZV32F403A, 0, nullptr, nullptr, 0);
    EXPECT_EQ(withoutDevice.m_nSectorNums, 0);
    EXPECT_EQ(withoutDevice.m_bSectorsPerBit, 0);
    CUserSystemData nothing;
    EXPECT_EQ(compactOf(nothing).size(), 0u);
    nothing.SetEPP(0, true);
    nothing.SetEPP(true, true);
    EXPECT_TRUE(nothing.GetEPPMapSectorIndex(4).isEmpty());
}

TEST(CUserSystemData, IsAsErasedUntilABlockIsRead) {
    OptionDevice device(64, 2048, 2);
    CUserSystemData data(ZV32F403A, 0, &device.device, nullptr, 0);
    EXPECT_EQ(compactOf(data), std::vector<BYTE>(24, 0xFF));
}

TEST(CUserSystemData, ReadsABlockOfTheCompactLengthAndNoShorterOne) {
    OptionDevice device(64, 2048, 2);
    std::vector<BYTE> block(24, 0x3C);
    CUserSystemData data(ZV32F403A, 0, &device.device, block.data(), 24);
    EXPECT_EQ(compactOf(data), block);
    std::vector<BYTE> other(30, 0x11);
    data.Set(other.data(), 23);
    EXPECT_EQ(compactOf(data), block);
    data.Set(nullptr, 24);
    EXPECT_EQ(compactOf(data), block);
    data.Set(other.data(), 30);
    EXPECT_EQ(compactOf(data), std::vector<BYTE>(24, 0x11));
}

TEST(CUserSystemData, ReadsAnElementOfTwiceTheCompactLengthAndNoShorterOne) {
    OptionDevice device(64, 2048, 2);
    CUserSystemData data(ZV32F403A, 0, &device.device, nullptr, 0);
    std::vector<BYTE> bytes(48, 0x00);
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        bytes[i] = 0x21;
    IMAGEELEMENT element = {0x1000, 47, bytes.data()};
    EXPECT_FALSE(data.SetElementData(&element));
    data.SetElementData(bytes.data(), 47);
    EXPECT_EQ(data.FAP, 0xFF);
    element.dwDataLength = 48;
    EXPECT_TRUE(data.SetElementData(&element)); // the complements are wrong, and nobody looks
    EXPECT_EQ(compactOf(data), std::vector<BYTE>(24, 0x21));
    EXPECT_EQ(bytes[0], 0x21);
    EXPECT_EQ(bytes[1], 0x00);
}

TEST(CUserSystemData, RefusesAnElementWithoutBytes) {
    OptionDevice device(64, 2048, 2);
    CUserSystemData data(ZV32F403A, 0, &device.device, nullptr, 0);
    IMAGEELEMENT element = {0, 4096, nullptr};
    EXPECT_FALSE(data.SetElementData(&element));
    EXPECT_FALSE(data.SetElementData(static_cast<PIMAGEELEMENT>(nullptr)));
    data.SetElementData(nullptr, 4096);
    EXPECT_EQ(data.FAP, 0xFF);
}

TEST(CUserSystemData, AnElementLengthBeyond32BitsIsNotTakenForAShortOne) {
    OptionDevice device(64, 2048, 2);
    CUserSystemData data(ZV32F403A, 0, &device.device, nullptr, 0);
    std::vector<BYTE> bytes(4096, 0x42);
    IMAGEELEMENT element = {0, 0x100000000, bytes.data()};
    EXPECT_TRUE(data.SetElementData(&element));
    EXPECT_EQ(data.FAP, 0x42);
}

TEST(CUserSystemData, TheElementFormOfLayoutAFillsItsTail) {
    OptionDevice device(64, 2048, 2);
    std::vector<BYTE> block(24, 0x5A);
    CUserSystemData data(ZV32F413, 0, &device.device, block.data(), 24);
    const std::vector<BYTE> element = elementOf(data);
    ASSERT_EQ(element.size(), 4096u);
    for (std::size_t i = 0; i < 4096; i += 2) {
        EXPECT_EQ(element[i], i < 48 ? 0x5A : 0xFF) << i;
        EXPECT_EQ(element[i + 1], i < 48 ? 0xA5 : 0x00) << i;
    }
}

TEST(CUserSystemData, SetDataTakesAtLeastAllOfIt) {
    OptionDevice device(64, 2048, 2);
    CUserSystemData data(ZV32F403A, 0, &device.device, nullptr, 0);
    BYTE bytes[255] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    data.SetData(bytes, 7);
    EXPECT_EQ(data.DATA[0], 0xFF);
    data.SetData(bytes, 8);
    EXPECT_EQ(data.DATA[0], 1);
    EXPECT_EQ(data.DATA[7], 8);
    bytes[0] = 100;
    data.SetData(bytes, 255);
    EXPECT_EQ(data.DATA[0], 100);
}

TEST(CUserSystemData, SetDataTakesNothingFromNowhere) {
    OptionDevice device(64, 2048, 2);
    CUserSystemData data(ZV32F403A, 0, &device.device, nullptr, 0);
    data.SetData(nullptr, 8);
    EXPECT_EQ(data.DATA[0], 0xFF);
    BYTE bytes[8] = {1};
    BYTE *const kept = data.DATA;
    data.DATA = nullptr;
    data.SetData(bytes, 8);
    EXPECT_EQ(data.DATA, nullptr);
    data.DATA = kept;
    EXPECT_EQ(data.DATA[0], 0xFF);
}

TEST(CUserSystemData, SetDataOfMoreThanAByteCanCountNeverSucceeds) {
    OptionDevice device(64, 2048, 2);
    CUserSystemData data(ZV32F415, 0x4602, &device.device, nullptr, 0);
    BYTE bytes[512] = {};
    data.SetData(bytes, 255);
    EXPECT_EQ(data.DATA[0], 0xFF);
    EXPECT_EQ(data.DATA[505], 0xFF);
}

TEST(CUserSystemData, PlainStoresStore) {
    CUserSystemData data;
    data.SetFAP(0xA5);
    data.SetEOPB0(0x11);
    data.SetSectorNum(77);
    data.SetBANK3KEY0(0);
    data.SetBANK3KEY1(1);
    data.SetBANK3KEY2(2);
    data.SetBANK3KEY3(3);
    data.SetBANK3KEY4(4);
    data.SetBANK3KEY5(5);
    data.SetBANK3KEY6(6);
    data.SetBANK3KEY7(7);
    EXPECT_EQ(data.FAP, 0xA5);
    EXPECT_EQ(data.EOPB0, 0x11);
    EXPECT_EQ(data.m_nSectorNums, 77);
    const std::vector<int> keys = {data.BANK3KEY0, data.BANK3KEY1, data.BANK3KEY2, data.BANK3KEY3,
                                   data.BANK3KEY4, data.BANK3KEY5, data.BANK3KEY6, data.BANK3KEY7};
    EXPECT_EQ(keys, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
}

} // namespace
