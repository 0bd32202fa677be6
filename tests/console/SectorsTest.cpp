#include "app/Sectors.h"

#include <cstdio>

#include <gtest/gtest.h>

#include "FakeLink.h"
#include "app/Link.h"

namespace {

TEST(Sectors, RangeWord) {
    const struct {
        const char *word;
        int begin;
        int end;
    } table[] = {
        {"0-20", 0, 20}, {"3-3", 3, 3},   {"3-1", 3, 1},   {"-5", 0, 5},     {"5-", 5, 0},     {"-", 0, 0},
        {"", 0, 0},      {"0", 0, 0},     {"5", 5, 0},     {"15", 15, 1},    {"123", 123, 12}, {"ab-cd", 0, 0},
        {"1-2-3", 1, 3}, {"4x-7y", 4, 7}, {"-1-2", -1, 2}, {"0x10-2", 0, 2}, {" 1- 2", 1, 2},
    };
    for (const auto &row : table) {
        const SectorRange range = parseSectorRange(row.word);
        EXPECT_EQ(range.begin, row.begin) << row.word;
        EXPECT_EQ(range.end, row.end) << row.word;
    }
}

TEST(Sectors, OfARange) {
    FakeLink fake;
    fake.device.m_haveBank3 = true;
    const struct {
        const char *word;
        QList<int> sectors; // after a 9 that was there before
    } table[] = {
        {"3-5", {9, 3, 4, 5}},
        {"9-9", {9, 9}}, // doubles stay
        {"2147483646-2147483647", {9, 2147483646, 2147483647}},
        // Refused: the list is left alone.
        {"5-3", {9}},
        {"-1-2", {9}},
        {"0-2000000000", {9}},
        {"0-2147483647", {9}},
    };
    for (const auto &row : table) {
        QList<int> sectors{9};
        EXPECT_EQ(appendSectors(row.word, deviceOf(&fake.link), sectors), row.sectors.size() > 1) << row.word;
        EXPECT_EQ(sectors, row.sectors) << row.word;
    }
}

// Ranges share one list and its bound, which no device that can be addressed has.
TEST(Sectors, ListIsBounded) {
    FakeLink fake;
    fake.device.m_haveBank3 = true;
    QList<int> sectors;
    EXPECT_FALSE(appendSectors("0-1048576", deviceOf(&fake.link), sectors));
    EXPECT_TRUE(appendSectors("0-1048574", deviceOf(&fake.link), sectors));
    EXPECT_FALSE(appendSectors("0-1", deviceOf(&fake.link), sectors));
    EXPECT_TRUE(appendSectors("7-7", deviceOf(&fake.link), sectors));
    EXPECT_FALSE(appendSectors("7-7", deviceOf(&fake.link), sectors));
    EXPECT_EQ(sectors.size(), 1 << 20);
    EXPECT_TRUE(IsSectorsValid(0, 2000000000, deviceOf(&fake.link))); // the test of the numbers has no bound
}

TEST(Sectors, WithoutALink) {
    EXPECT_FALSE(IsSectorsValid(0, 0, nullptr));
    EXPECT_TRUE(GetAllSectors(nullptr).isEmpty());
    EXPECT_EQ(familyOf(static_cast<const CCom *>(nullptr)).series, 0);
}

TEST(Sectors, OfTheFlash) {
    FakeLink fake;
    EXPECT_TRUE(IsSectorsValid(0, 127, deviceOf(&fake.link)));
    EXPECT_FALSE(IsSectorsValid(0, 128, deviceOf(&fake.link)));
    EXPECT_FALSE(IsSectorsValid(128, 128, deviceOf(&fake.link)));
    EXPECT_FALSE(IsSectorsValid(5, 4, deviceOf(&fake.link)));
    EXPECT_FALSE(IsSectorsValid(-1, 4, deviceOf(&fake.link)));
    EXPECT_EQ(GetAllSectors(deviceOf(&fake.link)).size(), 128);
    EXPECT_EQ(GetAllSectors(deviceOf(&fake.link)).last(), 127);
}

TEST(Sectors, WithoutASectorSize) {
    FakeLink fake;
    fake.device.m_ISectorSize = 0;
    EXPECT_FALSE(IsSectorsValid(0, 0, deviceOf(&fake.link)));
    EXPECT_TRUE(GetAllSectors(deviceOf(&fake.link)).isEmpty());
}

TEST(Sectors, WithoutADevice) {
    FakeLink fake;
    fake.link.m_ObBootLoader->m_ObDevice = nullptr;
    EXPECT_FALSE(IsSectorsValid(0, 0, deviceOf(&fake.link)));
    EXPECT_TRUE(GetAllSectors(deviceOf(&fake.link)).isEmpty());
}

// With SPIM enabled, four families take any number and the others none.
TEST(Sectors, OfFamiliesWithSpim) {
    for (int family = 0; family <= 255; ++family) {
        char series[3];
        std::snprintf(series, sizeof series, "%02X", static_cast<unsigned int>(family) & 0xFF);
        FakeLink fake(series);
        fake.device.m_haveBank3 = true;
        const bool taken = family == 2 || family == 4 || family == 7 || family == 8;
        EXPECT_EQ(IsSectorsValid(0, 1, deviceOf(&fake.link)), taken) << series;
        EXPECT_EQ(IsSectorsValid(0, 99999, deviceOf(&fake.link)), taken) << series;
        EXPECT_FALSE(IsSectorsValid(1, 0, deviceOf(&fake.link))) << series;
    }
}

} // namespace
