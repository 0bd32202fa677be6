#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/libfiles/LibFiles.h"

using namespace libfiles;

namespace {

struct Read {
    unsigned int status = 0;
    short sectors = -1;
    short packetSize = -1;
    BYTE sectorsPerSector = 99;
    std::string name;
    MAPPING map{};
    std::vector<MAPPINGSECTOR> records;
};

// The two calls that the console makes.
Read readMap(const std::string &path) {
    Read read;
    char name[256] = "unset";
    read.status =
        FILES_GetMemoryMapping(path.c_str(), &read.sectors, name, &read.packetSize, nullptr, &read.sectorsPerSector);
    read.name = name;
    if (read.status != 0)
        return read;
    read.records.resize(static_cast<std::size_t>(read.sectors));
    read.map.pSectors = read.records.data();
    read.status =
        FILES_GetMemoryMapping(path.c_str(), &read.sectors, name, &read.packetSize, &read.map, &read.sectorsPerSector);
    return read;
}

Read readText(const std::string &text) {
    const TempDir dir;
    writeFile(dir / "a.ZVmap", text);
    return readMap(dir / "a.ZVmap");
}

TEST(MapFile, AUniformFlash) {
    const Read read = readText(
        "[Product]\nName=ZV32F403A\nPID=70050347\nSerial=07\nSectorsPerSector=2\nPacketSize=128\nAlternate=3\n\n"
        "[Sector0]\nAddress=08000000\nSize=800\nCount=2048\n");
    ASSERT_EQ(read.status, 0u);
    EXPECT_EQ(read.sectors, 2048);
    EXPECT_EQ(read.packetSize, 128);
    EXPECT_EQ(read.sectorsPerSector, 2);
    EXPECT_EQ(read.name, "ZV32F403A");
    EXPECT_STREQ(read.map.Name, "ZV32F403A");
    EXPECT_EQ(read.map.nAlternate, 3);
    ASSERT_EQ(read.map.NbSectors, 2048u);
    for (unsigned i = 0; i < 2048; ++i) {
        const MAPPINGSECTOR &sector = read.records[i];
        ASSERT_EQ(sector.dwStartAddress, 0x08000000u + i * 2048);
        ASSERT_EQ(sector.dwAliasedAddress, sector.dwStartAddress);
        ASSERT_EQ(sector.dwSectorIndex, i);
        ASSERT_EQ(sector.dwSectorSize, 2048u);
        ASSERT_EQ(sector.bSectorType, 0);
        ASSERT_TRUE(sector.UseForOperation && sector.UseForErase && sector.UseForUpload &&
                    sector.UseForEraseProgramProtect);
    }
    EXPECT_STREQ(read.records[0].Name, "Sector0000");
    EXPECT_STREQ(read.records[1].Name, "Sector0001");
    EXPECT_STREQ(read.records[2047].Name, "Sector2047");
}

TEST(MapFile, GroupsFollowOneAnother) {
    const Read read = readText("[Sector1]\nSize=0x1000\nCount=2\nAddress=0x08010000\nAlias=10000\nType=7\nOperation="
                               "0\nErase=1\nUpload=0\nProtect=1\n"
                               "[Sector0]\nSize=400\nCount=2\n[Sector2]\nSize=800\n");
    ASSERT_EQ(read.status, 0u);
    ASSERT_EQ(read.sectors, 5);
    const DWORD starts[] = {0x08000000, 0x08000400, 0x08010000, 0x08011000, 0x08012000};
    const DWORD sizes[] = {0x400, 0x400, 0x1000, 0x1000, 0x800};
    for (unsigned i = 0; i < 5; ++i) {
        EXPECT_EQ(read.records[i].dwStartAddress, starts[i]);
        EXPECT_EQ(read.records[i].dwSectorSize, sizes[i]);
        EXPECT_EQ(read.records[i].dwSectorIndex, i);
    }
    const MAPPINGSECTOR &sector = read.records[3];
    EXPECT_EQ(sector.dwAliasedAddress, 0x11000u);
    EXPECT_EQ(sector.bSectorType, 7);
    EXPECT_FALSE(sector.UseForOperation);
    EXPECT_TRUE(sector.UseForErase);
    EXPECT_FALSE(sector.UseForUpload);
    EXPECT_TRUE(sector.UseForEraseProgramProtect);
}

TEST(MapFile, WhatIsMissingHasItsDefault) {
    const Read read = readText("[Sector0]\nSize=800\n");
    ASSERT_EQ(read.status, 0u);
    EXPECT_EQ(read.sectors, 1);
    EXPECT_EQ(read.packetSize, 0);
    EXPECT_EQ(read.sectorsPerSector, 0);
    EXPECT_EQ(read.name, "");
    EXPECT_EQ(read.records[0].dwStartAddress, 0x08000000u);
}

TEST(MapFile, Text) {
    const Read read =
        readText("\xEF\xBB\xBF; a comment\r\n# another\r\n\r\n [ Product ] \r\n Name = \"ZV32; F\" ; comment\r\n"
                 "PID=1234 5678\r\nOther=anything at all\r\n[Other]\r\nSize=zz\r\n[Sectors]\r\nx=y\r\n"
                 "[Sector0]\r\nSize=800;comment\r\nCount=\"3\"\r\n[Empty]");
    ASSERT_EQ(read.status, 0u);
    EXPECT_EQ(read.name, "ZV32; F");
    EXPECT_EQ(read.sectors, 3);
}

TEST(MapFile, MoreThanFourDigits) {
    const Read read = readText("[Sector0]\nSize=100\nCount=32767\n");
    ASSERT_EQ(read.status, 0u);
    ASSERT_EQ(read.sectors, 32767);
    EXPECT_STREQ(read.records[32766].Name, "Sector32766");
}

TEST(MapFile, SecondaryKeysAtTheEndOfTheirRange) {
    const Read read =
        readText("[Product]\nPacketSize=256\nSectorsPerSector=255\nAlternate=255\nName=" + std::string(255, 'n') +
                 "\n[Sector0]\nSize=800\nAlias=FFFFFFFF\nType=255\n");
    ASSERT_EQ(read.status, 0u);
    EXPECT_EQ(read.packetSize, 256);
    EXPECT_EQ(read.sectorsPerSector, 255);
    EXPECT_EQ(read.name, std::string(255, 'n'));
    EXPECT_EQ(read.map.nAlternate, 255);
    EXPECT_EQ(read.records[0].dwAliasedAddress, 0xFFFFFFFFu);
    EXPECT_EQ(read.records[0].bSectorType, 255);
}

// The table does not stand on these, so it is not lost with them.
TEST(MapFile, ASecondaryKeyOutOfRangeCountsAsMissing) {
    const std::string group = "[Sector0]\nSize=800\nCount=4\n";
    const std::string texts[] = {"[Product]\nPacketSize=257\n" + group,
                                 "[Product]\nPacketSize=-1\n" + group,
                                 "[Product]\nSectorsPerSector=256\n" + group,
                                 "[Product]\nSectorsPerSector=two\n" + group,
                                 "[Product]\nAlternate=256\n" + group,
                                 "[Product]\nName=" + std::string(256, 'n') + "\n" + group,
                                 group + "Alias=100000000\n",
                                 group + "Type=256\n",
                                 group + "Operation=2\n",
                                 group + "Erase=2\n",
                                 group + "Upload=yes\n",
                                 group + "Protect=\n"};
    for (const std::string &text : texts) {
        SCOPED_TRACE(text);
        const Read read = readText(text);
        ASSERT_EQ(read.status, 0u);
        ASSERT_EQ(read.sectors, 4);
        EXPECT_EQ(read.packetSize, 0);
        EXPECT_EQ(read.sectorsPerSector, 0);
        EXPECT_EQ(read.name, "");
        EXPECT_EQ(read.map.nAlternate, 0);
        const MAPPINGSECTOR &sector = read.records[3];
        EXPECT_EQ(sector.dwStartAddress, 0x08001800u);
        EXPECT_EQ(sector.dwAliasedAddress, 0x08001800u);
        EXPECT_EQ(sector.bSectorType, 0);
        EXPECT_TRUE(sector.UseForOperation && sector.UseForErase && sector.UseForUpload &&
                    sector.UseForEraseProgramProtect);
    }
}

struct Bad {
    const char *what;
    std::string text;
    unsigned int status;
};

const Bad badMaps[] = {
    {"nothing", "", badFormat},
    {"no sectors", "[Product]\nName=x\n", badFormat},
    {"no Size", "[Sector0]\nCount=4\n", badFormat},
    {"Size 0", "[Sector0]\nSize=0\n", badFormat},
    {"Size below 256", "[Sector0]\nSize=FF\n", badFormat},
    {"Size over 256 MB", "[Sector0]\nSize=10000001\n", badFormat},
    {"Size without end", "[Sector0]\nSize=FFFFFFFFFFFFFFFFFFFF\n", badFormat},
    {"Size negative", "[Sector0]\nSize=-800\n", badFormat},
    {"Size empty", "[Sector0]\nSize=\n", badFormat},
    {"Size no number", "[Sector0]\nSize=8oo\n", badFormat},
    {"Count 0", "[Sector0]\nSize=800\nCount=0\n", badFormat},
    {"Count hexadecimal", "[Sector0]\nSize=800\nCount=1F\n", badFormat},
    {"two million sectors", "[Sector0]\nSize=100\nCount=2000000\n", badFormat},
    {"32768 sectors", "[Sector0]\nSize=100\nCount=32768\n", badFormat},
    {"32768 sectors in two groups", "[Sector0]\nSize=100\nCount=32767\n[Sector1]\nSize=100\n", badAddressRange},
    {"more than 256 MB", "[Sector0]\nSize=8000000\nCount=3\n", badAddressRange},
    {"past 32 bits", "[Sector0]\nAddress=FFFFFF00\nSize=200\n", badAddressRange},
    {"Address over 32 bits", "[Sector0]\nAddress=100000000\nSize=200\n", badFormat},
    {"groups overlap", "[Sector0]\nSize=800\nCount=2\n[Sector1]\nAddress=08000800\nSize=800\n", badAddressRange},
    {"groups go down", "[Sector0]\nSize=800\n[Sector1]\nAddress=07000000\nSize=800\n", badAddressRange},
    {"a hole in the numbering", "[Sector0]\nSize=800\n[Sector2]\nSize=800\n", badFormat},
    {"no first group", "[Sector1]\nSize=800\n", badFormat},
    {"a second spelling of a number", "[Sector0]\nSize=800\n[Sector00]\nSize=800\n", badFormat},
    {"a group twice", "[Sector0]\nSize=800\n[Sector0]\nSize=800\n", badFormat},
    {"a key twice", "[Sector0]\nSize=800\nSize=400\n", badFormat},
    {"a line without a key", "[Sector0]\nSize=800\nhello\n", badFormat},
    {"a line without a name", "[Sector0]\nSize=800\n=5\n", badFormat},
    {"a key before all sections", "Size=800\n[Sector0]\nSize=800\n", badFormat},
    {"a section without an end", "[Sector0\nSize=800\n", badFormat},
    {"only a bracket", "[\n", badFormat},
    {"a null", std::string("[Sector0]\nSize=800\nx=\0\n", 23), badFormat},
    {"binary",
     std::string("\x7F"
                 "ELF\x02\x01\x01\0\0\0\xFF\xFE",
                 12),
     badFormat},
};

TEST(MapFile, badMaps) {
    for (const Bad &bad : badMaps) {
        SCOPED_TRACE(bad.what);
        const Read read = readText(bad.text);
        EXPECT_EQ(read.status, bad.status);
        EXPECT_EQ(read.sectors, 0);
        EXPECT_EQ(read.packetSize, 0);
        EXPECT_EQ(read.name, "unset");
    }
}

TEST(MapFile, ANameOf255BytesFillsItsBuffer) {
    const Read read = readText("[Product]\nName=" + std::string(255, 'n') + "\n[Sector0]\nSize=800\n");
    EXPECT_EQ(read.status, 0u);
    EXPECT_EQ(read.name, std::string(255, 'n'));
    EXPECT_EQ(std::strlen(read.map.Name), 255u);
}

TEST(MapFile, PathsThatAreNoMap) {
    const TempDir dir;
    std::filesystem::create_directory(dir / "d.ZVmap");
    std::filesystem::create_symlink("/dev/zero", dir / "z.ZVmap");
    ASSERT_EQ(::mkfifo((dir / "f.ZVmap").c_str(), 0600), 0);
    for (const char *name : {"d.ZVmap", "z.ZVmap", "f.ZVmap", "missing.ZVmap"}) {
        const Read read = readMap(dir / name);
        EXPECT_EQ(read.status, unableToOpenFile) << name;
        EXPECT_EQ(read.sectors, 0) << name;
    }
    writeFile(dir / "large.ZVmap", std::string());
    std::filesystem::resize_file(dir / "large.ZVmap", 8ull << 30);
    EXPECT_EQ(readMap(dir / "large.ZVmap").status, badFormat);
}

TEST(MapFile, NullPointers) {
    const TempDir dir;
    const std::string path = dir / "a.ZVmap";
    writeFile(path, std::string("[Sector0]\nSize=800\n"));
    short sectors = 0;
    EXPECT_EQ(FILES_GetMemoryMapping(nullptr, &sectors, nullptr, nullptr, nullptr, nullptr), badParameter);
    EXPECT_EQ(FILES_GetMemoryMapping(path.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr), badParameter);
    EXPECT_EQ(FILES_GetMemoryMapping(path.c_str(), &sectors, nullptr, nullptr, nullptr, nullptr), 0u);
    EXPECT_EQ(sectors, 1);
    MAPPING map{};
    EXPECT_EQ(FILES_GetMemoryMapping(path.c_str(), &sectors, nullptr, nullptr, &map, nullptr), badParameter);
}

// The file may change between the call that counts and the one that fills.
TEST(MapFile, ATableThatGrewIsNotWrittenPastItsRecords) {
    const TempDir dir;
    writeFile(dir / "a.ZVmap", std::string("[Sector0]\nSize=800\nCount=9\n"));
    std::vector<MAPPINGSECTOR> records(8);
    MAPPING map{};
    map.pSectors = records.data();
    short sectors = 8;
    EXPECT_EQ(FILES_GetMemoryMapping((dir / "a.ZVmap").c_str(), &sectors, nullptr, nullptr, &map, nullptr),
              elementsFull);
    EXPECT_EQ(sectors, 0);
    EXPECT_EQ(map.NbSectors, 0u);
    map.NbSectors = 9;
    records.resize(9);
    map.pSectors = records.data();
    EXPECT_EQ(FILES_GetMemoryMapping((dir / "a.ZVmap").c_str(), &sectors, nullptr, nullptr, &map, nullptr), 0u);
    EXPECT_EQ(sectors, 9);
}

TEST(MapFile, SectionsThatOnlyBeginLikeAGroup) {
    const std::string group = "[Sector0]\nAddress=08000000\nSize=800\nCount=2\n";
    for (const char *other : {"[Sector]\nCount=x\n", "[Sector123456]\nCount=x\n", "[Sec]\nCount=x\n",
                              "[SectorX]\nCount=x\n", "[A]\nName=\"half\n"}) {
        const Read read = readText(group + other);
        EXPECT_EQ(read.status, 0u) << other;
        EXPECT_EQ(read.sectors, 2) << other;
    }
    EXPECT_NE(readText(group + "[Sector1]\nCount=x\n").status, 0u);
}

} // namespace
