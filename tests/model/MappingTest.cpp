#include "device/Mapping.h"

#include "ModelTest.h"

namespace {

using Lines = std::vector<std::string>;

// Records that another build of the file library fills must lie where it puts them.
TEST(Mapping, TheRecordsOfTheLibraryHaveTheirLayout) {
    EXPECT_EQ(offsetof(MAPPINGSECTOR, dwStartAddress), 256u);
    EXPECT_EQ(offsetof(MAPPINGSECTOR, dwAliasedAddress), 264u);
    EXPECT_EQ(offsetof(MAPPINGSECTOR, dwSectorIndex), 272u);
    EXPECT_EQ(offsetof(MAPPINGSECTOR, dwSectorSize), 280u);
    EXPECT_EQ(offsetof(MAPPINGSECTOR, bSectorType), 288u);
    EXPECT_EQ(offsetof(MAPPINGSECTOR, UseForOperation), 289u);
    EXPECT_EQ(offsetof(MAPPINGSECTOR, UseForErase), 290u);
    EXPECT_EQ(offsetof(MAPPINGSECTOR, UseForUpload), 291u);
    EXPECT_EQ(offsetof(MAPPINGSECTOR, UseForEraseProgramProtect), 292u);
    EXPECT_EQ(sizeof(MAPPINGSECTOR), 296u);
    EXPECT_EQ(offsetof(MAPPING, Name), 1u);
    EXPECT_EQ(offsetof(MAPPING, NbSectors), 264u);
    EXPECT_EQ(offsetof(MAPPING, pSectors), 272u);
    EXPECT_EQ(sizeof(MAPPING), 280u);
    EXPECT_EQ(offsetof(IMAGEELEMENT, dwDataLength), 8u);
    EXPECT_EQ(offsetof(IMAGEELEMENT, Data), 16u);
    EXPECT_EQ(sizeof(IMAGEELEMENT), 24u);
}

TEST(Mapping, KeepsTheTargetAndNamesItsFile) {
    const Workplace workplace;
    const CMapping map("ZV32F413_256K");
    EXPECT_EQ(map.m_StrTarget, "ZV32F413_256K");
    EXPECT_EQ(map.m_StrMapFile, "ZV32F413_256K.ZVmap");
}

TEST(Mapping, WithoutAFileHasNoSectorsAndAsksNobody) {
    const Workplace workplace;
    FilesDouble files(workplace);
    const CMapping map("X_1K");
    EXPECT_EQ(map.m_AMappingSectorNum, 0u);
    EXPECT_EQ(map.m_AMappingSector, nullptr);
    EXPECT_EQ(map.GetSectorNums(), -1);
    EXPECT_EQ(map.GetSectorIndex(0x08000000), -1);
    EXPECT_EQ(map.GetSectorIndex(0), -1);
    EXPECT_EQ(map.GetPacketSize(), 0);
    ASSERT_NE(map.GetIpMapping(), nullptr);
    EXPECT_EQ(map.GetIpMapping()->NbSectors, 0u);
    EXPECT_EQ(map.GetIpMapping()->pSectors, nullptr);
    EXPECT_EQ(files.calls(), Lines{});
}

TEST(Mapping, ReadsTheFileBelowTheWorkingDirectoryTwice) {
    const Workplace workplace;
    workplace.write("Map/X_8K.ZVmap", "");
    FilesDouble files(workplace, "map sectors=4 size=2048 packet=250\n");
    const CMapping map("X_8K");
    EXPECT_EQ(files.calls(), (Lines{"FILES_GetMemoryMapping path=./Map/X_8K.ZVmap mapping=null -> 0",
                                    "FILES_GetMemoryMapping path=./Map/X_8K.ZVmap mapping=set -> 0"}));
    EXPECT_EQ(map.GetSectorNums(), 4);
    EXPECT_EQ(map.GetPacketSize(), 250);
}

TEST(Mapping, HoldsTheSectorsTwice) {
    const Workplace workplace;
    workplace.write("Map/X_8K.ZVmap", "");
    const FilesDouble files(workplace, "map sectors=3 size=1024 start=08001000\n");
    const CMapping map("X_8K");
    const MAPPING record = map.GetScMapping();
    EXPECT_EQ(record.NbSectors, 3u);
    EXPECT_EQ(record.pSectors, map.GetIpMapping()->pSectors);
    ASSERT_NE(map.m_AMappingSector, record.pSectors);
    for (unsigned int i = 0; i < 3; ++i) {
        EXPECT_EQ(map.m_AMappingSector[i].dwStartAddress, 0x08001000 + i * 1024);
        EXPECT_EQ(map.m_AMappingSector[i].dwSectorSize, 1024u);
        EXPECT_EQ(record.pSectors[i].dwStartAddress, 0x08001000 + i * 1024);
        EXPECT_STREQ(map.m_AMappingSector[i].Name, ("Sector" + std::to_string(i)).c_str());
    }
}

TEST(Mapping, FindsASectorByItsStartOnly) {
    const Workplace workplace;
    workplace.write("Map/X_8K.ZVmap", "");
    const FilesDouble files(workplace, "map sectors=4 size=2048\n");
    const CMapping map("X_8K");
    EXPECT_EQ(map.GetSectorIndex(0x08000000), 0);
    EXPECT_EQ(map.GetSectorIndex(0x08001800), 3);
    EXPECT_EQ(map.GetSectorIndex(0x08000001), -1);
    EXPECT_EQ(map.GetSectorIndex(0x08001801), -1);
    EXPECT_EQ(map.GetSectorIndex(0x08002000), -1);
}

TEST(Mapping, OfTwoEqualStartsTheFirstWins) {
    const Workplace workplace;
    workplace.write("Map/X_8K.ZVmap", "");
    const FilesDouble files(workplace, "map sectors=4 size=0\n");
    EXPECT_EQ(CMapping("X_8K").GetSectorIndex(0x08000000), 0);
}

TEST(Mapping, ScalesAnIndexTwice) {
    const Workplace workplace;
    workplace.write("Map/X_8K.ZVmap", "");
    const FilesDouble files(workplace);
    const CMapping map("X_8K");
    const auto first = reinterpret_cast<std::uintptr_t>(map.GetScMapping().pSectors);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(map.GetSectorIntPtr(0)), first);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(map.GetSectorIntPtr(1)), first + 296 * 296);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(map.GetSectorIntPtr(3)), first + 3 * 296 * 296);
}

TEST(Mapping, AFailingSecondReadLeavesZeroedSectors) {
    const Workplace workplace;
    workplace.write("Map/X_8K.ZVmap", "");
    const FilesDouble files(workplace, "FILES_GetMemoryMapping status=5 nth=2\nmap sectors=4\n");
    const CMapping map("X_8K");
    EXPECT_EQ(map.GetSectorNums(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(map.m_AMappingSector[i].dwStartAddress, 0u);
        EXPECT_EQ(map.m_AMappingSector[i].Name[0], '\0');
    }
    EXPECT_EQ(map.GetScMapping().NbSectors, 0u);
}

TEST(Mapping, AFileThatTheLibraryCannotReadHasNoSectors) {
    const Workplace workplace;
    workplace.write("Map/X_8K.ZVmap", "");
    FilesDouble files(workplace, "FILES_GetMemoryMapping status=3\n");
    const CMapping map("X_8K");
    EXPECT_EQ(files.calls().size(), 2u);
    EXPECT_EQ(map.GetSectorNums(), -1);
    EXPECT_EQ(map.GetPacketSize(), 0);
}

TEST(Mapping, TakesTheGreatestCountAndNoNegativeOne) {
    const Workplace workplace;
    workplace.write("Map/X_8K.ZVmap", "");
    {
        const FilesDouble files(workplace, "map sectors=32767 size=128\n");
        const CMapping map("X_8K");
        EXPECT_EQ(map.GetSectorNums(), 32767);
        EXPECT_EQ(map.GetSectorIndex(0x08000000 + 32766 * 128), 32766);
    }
    const Workplace other;
    other.write("Map/X_8K.ZVmap", "");
    const FilesDouble files(other, "map sectors=-5\n");
    EXPECT_EQ(CMapping("X_8K").GetSectorNums(), -1);
}

} // namespace
