// The table of the families, column by column: the other way round than it is written.

#include "device/Families.h"

#include <set>

#include <gtest/gtest.h>

#include "device/Device.h"
#include "foundation/ShareParameter.h"

namespace {

using Series = std::set<int>;

const Series named = {ZV32F403_1, ZV32F403_2, ZV32F413, ZV32F415,  ZV32F403A, ZV32F407, ZV32F421, ZV32F435, ZV32F437,
                      ZV32F425,   ZV32L021,   ZV32F423, ZV32WB415, ZV32F405,  ZV32F402, ZV32F455, ZV32F456, ZV32F457,
                      ZV32A403A,  ZV32M412,   ZV32M416, ZV32G412,  ZV32A423,  ZV32F490, ZV32F422, ZV32F426};

template <typename Test>
Series seriesWith(Test test) {
    Series found;
    for (const int series : named)
        if (test(familyOf(series)))
            found.insert(series);
    return found;
}

TEST(Families, EverySeriesHasOneRow) {
    const std::vector<int> known = knownSeries();
    EXPECT_EQ(Series(known.begin(), known.end()).size(), known.size());
    for (const int series : named)
        EXPECT_EQ(familyOf(series).series, series);
    for (const int series : known)
        EXPECT_EQ(familyOf(series).series, series);
}

TEST(Families, Traits) {
    const struct {
        FamilyTrait trait;
        Series series;
    } table[] = {
        {wideGroups, {ZV32F435, ZV32F437}},
        {resetsForOptions, {ZV32F435, ZV32F437}},
        {restartsBeforeVerify, {ZV32F403_1, ZV32F403_2}},
        {firstFirmwareCrc, {ZV32F403_1, ZV32F403_2}},
        {blankKeysOpenBank3, {ZV32F413}},
        {takesAnySpimSector, {ZV32F403_2, ZV32F413, ZV32F403A, ZV32F407}},
        {confirmsHighProtection,
         {ZV32F425, ZV32F423, ZV32A423, ZV32L021, ZV32F405, ZV32F402, ZV32F455, ZV32F456, ZV32F457, ZV32F490, ZV32M412,
          ZV32M416, ZV32G412, ZV32F422, ZV32F426}},
    };
    for (const auto &row : table)
        EXPECT_EQ(seriesWith([&](const Family &family) { return family.has(row.trait); }), row.series) << row.trait;
}

TEST(Families, WhereTheOptionBytesLieAndBlocksOfTheErase) {
    const Series blocks = {ZV32F435, ZV32F437};
    for (const int series : named) {
        const bool low = blocks.count(series) != 0;
        EXPECT_EQ(familyOf(series).userSystemDataAddress, low ? 0x1FFFC000U : 0x1FFFF800U) << series;
        EXPECT_EQ(familyOf(series).eraseBlock, low ? 0x10000U : 0U) << series;
    }
}

TEST(Families, SectorsPerBit) {
    const auto withBit = [](int sectors) {
        return seriesWith([sectors](const Family &family) { return family.sectorsPerBit == sectors; });
    };
    EXPECT_EQ(withBit(2), Series({ZV32F415, ZV32WB415}));
    EXPECT_EQ(withBit(4), Series({ZV32F421, ZV32F425, ZV32L021}));
    EXPECT_EQ(withBit(0).size(), 21U);
}

TEST(Families, OtpAreas) {
    const auto withArea = [](unsigned int address, int length) {
        return seriesWith([=](const Family &family) {
            return family.otp.dataAddress == address && family.otp.dataLength == length &&
                   family.otp.lockAddress == (length == 0 ? 0U : 0x1FFFF500U) &&
                   family.otp.lockLength == (length == 0 ? 0 : 128);
        });
    };
    EXPECT_EQ(withArea(0x1FFFE400, 4096), Series({ZV32F455, ZV32F456, ZV32F457}));
    EXPECT_EQ(withArea(0x1FFFF000, 1024), Series({ZV32M412, ZV32M416, ZV32G412, ZV32F422, ZV32F426}));
    EXPECT_EQ(withArea(0, 0).size(), 18U);
}

TEST(Families, OneThatIsNotKnown) {
    for (const int series : {-1, 0, 3, 6, 10, 27, 33, 255}) {
        const Family &family = familyOf(series);
        EXPECT_EQ(family.series, 0) << series;
        EXPECT_EQ(family.userSystemDataAddress, 0x1FFFF800U);
        EXPECT_EQ(family.optionForm, OptionForm::a);
        EXPECT_EQ(family.switches, SwitchSet::plain);
        EXPECT_EQ(family.otp.dataAddress, 0U);
        EXPECT_EQ(family.traits, 0U);
    }
}

TEST(Families, SeriesTextOfADescription) {
    const struct {
        const char *text;
        int series;
    } table[] = {{"0D", 13}, {"20", 32}, {"01", 1}, {"", 0}, {"none", 0}, {"FF", 255}};
    for (const auto &row : table) {
        CDevice device;
        device.m_StrSerial = row.text;
        EXPECT_EQ(seriesOf(device), row.series) << row.text;
    }
    CDevice device;
    device.m_StrSerial = "0E";
    EXPECT_EQ(familyOf(device).series, ZV32F437);
}

} // namespace
