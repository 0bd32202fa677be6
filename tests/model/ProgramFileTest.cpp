#include "files/ProgramFile.h"

#include "ModelTest.h"
#include "files/TouchedSectors.h"
#include "foundation/Result.h"

namespace {

using Lines = std::vector<std::string>;

// A device of four sectors, or those of the script, and a closed file.
struct Bench {
    Workplace workplace;
    std::optional<FilesDouble> recorded;
    std::optional<CMapping> map;
    CDevice device;
    CProgramFile file;

    explicit Bench(const std::string &script, int kilobytes = 8) {
        workplace.write("Map/X.ZVmap", "");
        recorded.emplace(workplace, script);
        map.emplace("X");
        device.m_CMapping = &*map;
        device.m_IFlashSize = kilobytes;
        recorded->calls();
    }

    Lines calls() { return recorded->calls(); }

    std::vector<unsigned long> addresses() const {
        std::vector<unsigned long> result;
        for (const IMAGEELEMENT &element : file.m_lsElement)
            result.push_back(element.dwAddress);
        return result;
    }
};

TEST(ProgramFile, OpensInAFixedOrderOfCalls) {
    Bench bench("element address=08000000 length=4 fill=AB\n");
    bench.file.SetOptimizeForOpen(true);
    EXPECT_EQ(bench.file.Open("/x/a.hex", &bench.device), 0);
    EXPECT_EQ(bench.calls(),
              (Lines{"FILES_ImageFromFile path=/x/a.hex program=1 -> image=1 12340000",
                     "FILES_SetImageName image=1 name=/x/a.hex -> 12340000",
                     "FILES_FilterImageForOperation image=1 sectors=4 operation=2 optimise=1 -> 12340000",
                     "FILES_GetImageNbElement image=1 count=1 -> 12340000",
                     "FILES_GetImageElement image=1 index=0 data=null -> 12340000",
                     "FILES_GetImageElement image=1 index=0 data=set -> 12340000"}));
    EXPECT_EQ(bench.file.m_StrPath, "/x/a.hex");
    EXPECT_EQ(bench.file.m_Type, HEX);
    EXPECT_EQ(bench.file.m_UiFileSize, 4u);
    EXPECT_EQ(bench.file.m_lsElement.at(0).Data[3], 0xAB);
}

TEST(ProgramFile, ClosesWhatIsOpenFirst) {
    Bench bench("");
    ASSERT_EQ(bench.file.Open("/x/a.hex", &bench.device), 0);
    bench.calls();
    ASSERT_EQ(bench.file.Open("/x/b.bin", &bench.device), 0);
    const Lines calls = bench.calls();
    EXPECT_EQ(calls.at(0), "FILES_DestroyImage image=1 -> 12340000");
    EXPECT_EQ(calls.at(1), "FILES_ImageFromFile path=/x/b.bin program=1 -> image=2 12340000");
    EXPECT_EQ(calls.at(3), "FILES_FilterImageForOperation image=2 sectors=4 operation=2 optimise=0 -> 12340000");
    EXPECT_EQ(bench.file.GetElementCount(), 1);
    EXPECT_EQ(bench.file.m_UiFileSize, 2048u);
}

TEST(ProgramFile, WithoutADeviceOrAMapClosesAndFails) {
    Bench bench("");
    ASSERT_EQ(bench.file.Open("/x/a.hex", &bench.device), 0);
    EXPECT_EQ(bench.file.Open("/x/b.bin", nullptr), CResult::UNKNOWN_ERROR);
    EXPECT_FALSE(bench.file.HasOpen());
    EXPECT_EQ(bench.file.m_Type, BIN);
    bench.device.m_CMapping = nullptr;
    EXPECT_EQ(bench.file.Open("/x/b.bin", &bench.device), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(bench.file.Create(&bench.device), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(bench.file.Create(nullptr), CResult::UNKNOWN_ERROR);
}

struct FailureRow {
    const char *script;
    int code;
    std::size_t calls;
};

const FailureRow openFailures[] = {
    {"FILES_ImageFromFile status=3\n", CResult::FILES_UNABLETOOPENFILE, 1},
    {"FILES_SetImageName status=8\n", CResult::FILES_BADPARAMETER, 2},
    {"FILES_GetImageNbElement status=14\n", CResult::FILES_NOTOPEN, 4},
    {"FILES_GetImageElement status=10\n", CResult::FILES_UNEXPECTEDERROR, 5},
    {"FILES_GetImageElement status=99 nth=2\n", CResult::UNKNOWN_ERROR, 6},
};

TEST(ProgramFile, EveryFailureEndsTheOpeningWithItsCode) {
    for (const FailureRow &row : openFailures) {
        Bench bench(row.script);
        EXPECT_EQ(bench.file.Open("/x/a.hex", &bench.device), row.code) << row.script;
        EXPECT_EQ(bench.calls().size(), row.calls) << row.script;
        EXPECT_EQ(bench.file.GetElementCount(), 0) << row.script;
        EXPECT_EQ(bench.file.m_StrPath, "") << row.script;
    }
}

TEST(ProgramFile, AnImageThatCannotBeCutIsUsedAsItIs) {
    Bench bench("FILES_FilterImageForOperation status=6\n");
    EXPECT_EQ(bench.file.Open("/x/a.hex", &bench.device), 0);
    EXPECT_EQ(bench.file.GetElementCount(), 1);
}

TEST(ProgramFile, ElementsBeforeAFailureStay) {
    Bench bench("element length=4\nelement length=4\nFILES_GetImageElement status=5 nth=3\n");
    EXPECT_EQ(bench.file.Open("/x/a.hex", &bench.device), CResult::FILES_BADFORMAT);
    EXPECT_EQ(bench.file.GetElementCount(), 1);
    EXPECT_TRUE(bench.file.HasOpen());
    bench.file.Close();
    EXPECT_EQ(bench.file.GetElementCount(), 0);
}

TEST(ProgramFile, AllSectorsMeansAnEmptyListOrACountBelowOne) {
    CProgramFile file;
    EXPECT_TRUE(file.IsCreateAllSectors());
    file.SetSectorIndexsForCreate({1, 2}, 0);
    EXPECT_TRUE(file.IsCreateAllSectors());
    file.SetSectorIndexsForCreate({}, 2);
    EXPECT_TRUE(file.IsCreateAllSectors());
    file.SetSectorIndexsForCreate({1}, 1);
    EXPECT_FALSE(file.IsCreateAllSectors());
}

TEST(ProgramFile, CreatesAnImageOfAllSectorsAndFillsItInPlace) {
    Bench bench("map sectors=2 size=16\n");
    bench.file.SetBank3SizeForCreate(4);
    EXPECT_EQ(bench.file.Create(&bench.device), 0);
    Lines calls = bench.calls();
    EXPECT_EQ(calls.at(0), "FILES_CreateImageFromMapping sectors=2 bank3=4 -> image=1 12340000");
    EXPECT_EQ(calls.at(1), "FILES_GetImageNbElement image=1 count=3 -> 12340000");
    EXPECT_EQ(calls.size(), 8u); // and two for each element
    EXPECT_EQ(bench.addresses(), (std::vector<unsigned long>{0x08000000, 0x08000010, 0x08400000}));
    EXPECT_EQ(bench.file.m_UiFileSize, 16u + 16u + 4096u);
    bench.file.GetElement();
    EXPECT_EQ(bench.file.SetElement(), 0);
    EXPECT_EQ(
        bench.calls(),
        Lines{"FILES_SetImageElement image=1 index=0 insert=0 address=08000000 length=16 data=FFFFFFFF -> 12340000"});
}

TEST(ProgramFile, CreatesAnImageOfChosenSectorsAndInsertsThem) {
    Bench bench("map sectors=4 size=2048\n");
    bench.file.SetSectorIndexsForCreate({1, 3}, 2);
    EXPECT_EQ(bench.file.Create(&bench.device), 0);
    EXPECT_EQ(bench.calls(),
              (Lines{"FILES_CreateImageFromMapping sectors=4 bank3=0 -> image=1 12340000",
                     "FILES_GetImageNbElement image=1 count=4 -> 12340000",
                     "FILES_GetImageElement image=1 index=1 data=null -> 12340000",
                     "FILES_GetImageElement image=1 index=1 data=set -> 12340000",
                     "FILES_GetImageElement image=1 index=3 data=null -> 12340000",
                     "FILES_GetImageElement image=1 index=3 data=set -> 12340000",
                     "FILES_DestroyImage image=1 -> 12340000", "FILES_CreateImage one=1 -> image=2 12340000"}));
    EXPECT_EQ(bench.addresses(), (std::vector<unsigned long>{0x08000800, 0x08001800}));
    bench.file.GetElement();
    EXPECT_EQ(bench.file.SetElement(), 0);
    EXPECT_EQ(bench.calls(), Lines{"FILES_SetImageElement image=2 index=0 insert=1 address=08000800 length=2048 "
                                   "data=FFFFFFFF -> 12340000"});
}

struct ChoiceRow {
    const char *map;
    int kilobytes;
    int bank3;
    QList<int> sectors;
    int count;
    std::vector<unsigned long> addresses;
};

const ChoiceRow choiceRows[] = {
    // 256 KB in sectors of 2 KB: the SPIM begins at element 128.
    {"map sectors=128 size=2048\n", 256, 8, {32768}, 1, {0x08400000}},
    {"map sectors=128 size=2048\n", 256, 8, {127, 32768, 32769}, 3, {0x0803F800, 0x08400000, 0x08401000}},
    // 64 KB in sectors of 1 KB: at element 64.
    {"map sectors=64 size=1024\n", 64, 4, {0, 32768}, 2, {0x08000000, 0x08400000}},
    // Only the first so many count.
    {"map sectors=8 size=2048\n", 16, 0, {0, 1, 2}, 2, {0x08000000, 0x08000800}},
    // A number lower than the one before it is not found, nor are those after it.
    {"map sectors=8 size=2048\n", 16, 0, {2, 1, 5}, 3, {0x08001000}},
    {"map sectors=8 size=2048\n", 16, 0, {-1, 1}, 2, {}},
    {"map sectors=8 size=2048\n", 16, 0, {100}, 1, {}},
    // A count above the list.
    {"map sectors=8 size=2048\n", 16, 0, {7}, 5, {0x08003800}},
    {"map sectors=8 size=2048\n", 16, 0, {2147483647}, 1, {}},
};

TEST(ProgramFile, ASectorNumberNamesAnElement) {
    for (const ChoiceRow &row : choiceRows) {
        Bench bench(row.map, row.kilobytes);
        bench.file.SetSectorIndexsForCreate(row.sectors, row.count);
        bench.file.SetBank3SizeForCreate(row.bank3);
        EXPECT_EQ(bench.file.Create(&bench.device), 0);
        EXPECT_EQ(bench.addresses(), row.addresses) << row.map;
    }
}

// With 4 KB sectors the count of main flash sectors is twice what there are, so the first SPIM number
// names an element after the first SPIM element.
TEST(ProgramFile, CountsFourKilobyteSectorsAsTwo) {
    Bench bench("map sectors=4 size=4096\n", 16);
    bench.file.SetSectorIndexsForCreate({32768}, 1);
    bench.file.SetBank3SizeForCreate(20);
    EXPECT_EQ(bench.file.Create(&bench.device), 0);
    EXPECT_EQ(bench.addresses(), std::vector<unsigned long>{0x08404000});
}

const FailureRow createFailures[] = {
    {"FILES_CreateImageFromMapping status=8\n", CResult::FILES_BADPARAMETER, 1},
    {"FILES_GetImageNbElement status=14\n", CResult::FILES_NOTOPEN, 2},
    {"FILES_GetImageElement status=10\n", CResult::FILES_UNEXPECTEDERROR, 3},
    {"FILES_GetImageElement status=10 nth=2\n", CResult::FILES_UNEXPECTEDERROR, 4},
    {"FILES_DestroyImage status=13\n", CResult::FILES_FILEGENERALERROR, 5},
    {"FILES_CreateImage status=13\n", CResult::FILES_FILEGENERALERROR, 6},
};

TEST(ProgramFile, EveryFailureEndsTheCreationWithItsCode) {
    for (const FailureRow &row : createFailures) {
        Bench bench(row.script);
        bench.file.SetSectorIndexsForCreate({0}, 1);
        EXPECT_EQ(bench.file.Create(&bench.device), row.code) << row.script;
        EXPECT_EQ(bench.calls().size(), row.calls) << row.script;
    }
}

TEST(ProgramFile, WithoutCopiesOfTheSectorsTheyCountAsTwoKilobytes) {
    Bench bench("map sectors=16 size=1024\n", 16);
    delete[] bench.map->m_AMappingSector;
    bench.map->m_AMappingSector = nullptr;
    bench.file.SetSectorIndexsForCreate({32768}, 1);
    bench.file.SetBank3SizeForCreate(20);
    EXPECT_EQ(bench.file.Create(&bench.device), 0);
    EXPECT_EQ(bench.addresses(), std::vector<unsigned long>{0x08002000}); // not the sixteenth, but the eighth
}

TEST(TouchedSectors, WithoutASizeNoAddressOfFlashHasASector) {
    EXPECT_EQ(sectorOf(0x08000800, 0), -1);
    EXPECT_EQ(sectorOf(0x08000800, 2048), 1);
    EXPECT_EQ(sectorOf(0x07FFFFFF, 2048), -1);
    EXPECT_EQ(sectorOf(0x08401000, 0), 32769);
}

} // namespace
