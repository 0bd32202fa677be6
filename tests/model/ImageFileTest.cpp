#include <cstdlib>
#include <type_traits>

#include "ModelTest.h"
#include "files/CFiles.h"
#include "foundation/Result.h"

namespace {

using Lines = std::vector<std::string>;

struct TypeRow {
    const char *path;
    Type type;
};

const TypeRow typeRows[] = {
    {"/x/a.bin", BIN},     {"/x/a.hex", HEX},         {"/x/A.HEX", HEX},     {"/x/a.s19", S19},
    {"/x/a.srec", S19},    {"/x/a.SReC", S19},        {"", UNKNOWN},         {"/x/a.elf", UNKNOWN},
    {"/x/abin", UNKNOWN},  {"/build.bin/a.hex", BIN}, // the first suffix of the search, wherever it stands
    {"/x.hex/a.s19", HEX}, {"/x/a.hex.bak", HEX},     {"/x/a.s19.bin", BIN}, {"/x.srec/a", S19},
};

TEST(ImageFile, TheTypeIsTheFirstSuffixFoundAnywhere) {
    CProgramFile file;
    for (const TypeRow &row : typeRows)
        EXPECT_EQ(file.ParseFileType(row.path), row.type) << row.path;
    EXPECT_EQ(UNKNOWN, 0);
    EXPECT_EQ(BIN, 1);
    EXPECT_EQ(HEX, 2);
    EXPECT_EQ(S19, 3);
}

TEST(ImageFile, TheStatusesHaveTheirNumbers) {
    const std::vector<unsigned int> files = {CFiles::FILES_ERROR_OFFSET,
                                             CFiles::FILES_NOERROR,
                                             CFiles::FILES_BADSUFFIX,
                                             CFiles::FILES_UNABLETOOPENFILE,
                                             CFiles::FILES_UNABLETOOPENTEMPFILE,
                                             CFiles::FILES_BADFORMAT,
                                             CFiles::FILES_BADADDRESSRANGE,
                                             CFiles::FILES_BADPARAMETER,
                                             CFiles::FILES_UNEXPECTEDERROR,
                                             CFiles::FILES_FILEGENERALERROR,
                                             CFiles::FILES_NOTOPEN,
                                             CFiles::FILES_SETELEMENTFULL};
    EXPECT_EQ(files, (std::vector<unsigned int>{0, 0x12340000, 2, 3, 4, 5, 6, 8, 10, 13, 14, 15}));
    const std::vector<unsigned int> threads = {
        CFiles::STPRT_ERROR_OFFSET,      CFiles::STPRT_NOERROR,      CFiles::STPRT_UNABLETOLAUNCHTHREAD,
        CFiles::STPRT_ALREADYRUNNING,    CFiles::STPRT_BADPARAMETER, CFiles::STPRT_BADFIRMWARESTATEMACHINE,
        CFiles::STPRT_UNEXPECTEDERROR,   CFiles::STPRT_ERROR,        CFiles::STPRT_RETRYERROR,
        CFiles::STPRT_UNSUPPORTEDFEATURE};
    EXPECT_EQ(threads, (std::vector<unsigned int>{0x12345000, 0x12340000, 0x12345001, 0x12345007, 0x12345008,
                                                  0x12345009, 0x1234500A, 0x1234500B, 0x1234500C, 0x1234500D}));
}

TEST(ImageFile, AClosedFileHasNothing) {
    const Workplace workplace;
    FilesDouble files(workplace);
    CUserSystemDataFile file;
    unsigned int address = 5;
    EXPECT_FALSE(file.HasOpen());
    EXPECT_EQ(file.GetElement(), nullptr);
    EXPECT_EQ(file.GetElementCount(), 0);
    EXPECT_EQ(file.SetElement(true), CResult::FILES_NOTOPEN);
    EXPECT_EQ(file.SetElement(), CResult::FILES_NOTOPEN);
    EXPECT_EQ(file.GetStartAddress(&address), CResult::FILES_NOTOPEN);
    EXPECT_EQ(address, 0u);
    EXPECT_EQ(file.Save("/x/a.bin"), CResult::FILES_NOTOPEN);
    EXPECT_EQ(files.calls(), Lines{});
}

// Opened on a device of four sectors; the elements are those of the script.
class OpenFile : public testing::Test {
protected:
    void open(const std::string &elements) {
        workplace.write("Map/X.ZVmap", "");
        double_.emplace(workplace, elements);
        map.emplace("X");
        device.m_CMapping = &*map;
        device.m_IFlashSize = 8;
        ASSERT_EQ(file.Open("/x/a.hex", &device), 0);
        double_->calls();
    }

    Workplace workplace;
    std::optional<FilesDouble> double_;
    std::optional<CMapping> map;
    CDevice device;
    CProgramFile file;
};

constexpr char twoElements[] =
    "element address=08000000 length=100 fill=11\nelement address=08000800 length=50 fill=22\n";

TEST_F(OpenFile, IsWalkedToItsEndAndStaysThere) {
    open(twoElements);
    EXPECT_EQ(file.m_UiFileSize, 150u);
    ASSERT_NE(file.GetElement(), nullptr);
    EXPECT_EQ(file.m_uiFileStatus, 100u);
    const PIMAGEELEMENT second = file.GetElement();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->dwAddress, 0x08000800u);
    EXPECT_EQ(second->Data[49], 0x22);
    EXPECT_EQ(file.GetElement(), nullptr);
    EXPECT_EQ(file.GetElement(), nullptr);
    EXPECT_EQ(file.m_uiFileStatus, 150u);
    EXPECT_EQ(file.m_CurrentElementIndex, 1);
}

TEST_F(OpenFile, IsWalkedAgainAfterAReset) {
    open(twoElements);
    while (file.GetElement() != nullptr) {
    }
    file.ResetElement();
    EXPECT_EQ(file.m_uiFileStatus, 0u);
    EXPECT_EQ(file.m_CurrentElementIndex, -1);
    const PIMAGEELEMENT first = file.GetElement();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->dwAddress, 0x08000000u);
    EXPECT_EQ(file.m_uiFileStatus, 100u);
}

TEST_F(OpenFile, StoresNothingBeforeTheFirstElement) {
    open(twoElements);
    EXPECT_EQ(file.SetElement(true), 0);
    EXPECT_EQ(file.SetElement(), 0);
    EXPECT_EQ(double_->calls(), Lines{});
}

TEST_F(OpenFile, StoresTheCurrentElement) {
    open(twoElements);
    file.GetElement();
    file.GetElement()->Data[0] = 0x77;
    EXPECT_EQ(file.CFiles::SetElement(), 0);
    EXPECT_EQ(file.SetElement(false), 0);
    EXPECT_EQ(
        double_->calls(),
        (Lines{"FILES_SetImageElement image=1 index=1 insert=1 address=08000800 length=50 data=77222222 -> 12340000",
               "FILES_SetImageElement image=1 index=1 insert=0 address=08000800 length=50 data=77222222 -> 12340000"}));
}

TEST_F(OpenFile, ConvertsAFailureToStore) {
    open("FILES_SetImageElement status=15\n");
    file.GetElement();
    EXPECT_EQ(file.SetElement(), CResult::FILES_SETELEMENTFULL);
}

TEST_F(OpenFile, StartsAtItsFirstElement) {
    open("element address=08001000 length=4\nelement address=08000000 length=4\n");
    unsigned int address = 0;
    EXPECT_EQ(file.GetStartAddress(&address), 0);
    EXPECT_EQ(address, 0x08001000u);
}

TEST_F(OpenFile, WithoutElementsStartsAtZero) {
    open("no-elements\n");
    unsigned int address = 5;
    EXPECT_EQ(file.GetStartAddress(&address), 0);
    EXPECT_EQ(address, 0u);
    EXPECT_EQ(file.GetElement(), nullptr);
    EXPECT_EQ(file.SetElement(), 0);
}

TEST_F(OpenFile, TakesTheTypeOfWhatItWasSavedAs) {
    open(twoElements);
    EXPECT_EQ(file.m_Type, HEX);
    EXPECT_EQ(file.Save("/x/b.srec"), 0);
    EXPECT_EQ(file.m_Type, S19);
    EXPECT_EQ(double_->calls(), Lines{"FILES_ImageToFile path=/x/b.srec image=1 elements=2 bytes=150 -> 12340000"});
}

TEST_F(OpenFile, KeepsItsTypeWhenSavingFails) {
    open("FILES_ImageToFile status=2\n");
    EXPECT_EQ(file.Save("/x/b.txt"), CResult::FILES_BADSUFFIX);
    EXPECT_EQ(file.m_Type, HEX);
}

TEST_F(OpenFile, IsEmptyOnceClosed) {
    open("FILES_DestroyImage status=8\n");
    file.GetElement();
    file.Close();
    EXPECT_FALSE(file.HasOpen());
    EXPECT_EQ(file.m_StrPath, "");
    EXPECT_EQ(file.m_UiFileSize, 0u);
    EXPECT_EQ(file.m_uiFileStatus, 0u);
    EXPECT_EQ(file.m_CurrentElementIndex, -1);
    EXPECT_EQ(file.GetElementCount(), 0);
    EXPECT_EQ(double_->calls(), Lines{"FILES_DestroyImage image=1 -> 8"});
}

TEST_F(OpenFile, CallsNothingAtItsEnd) {
    open(twoElements);
    {
        CProgramFile other;
        ASSERT_EQ(other.Open("/x/b.bin", &device), 0);
        double_->calls();
    }
    EXPECT_EQ(double_->calls(), Lines{});
}

TEST(ImageFile, CanBeMadeAsAnObjectOfItsOwn) {
    const Workplace workplace;
    FilesDouble files(workplace);
    {
        CFiles file;
        EXPECT_EQ(file.Open("/x/a.srec", nullptr), 0);
        EXPECT_EQ(file.m_Type, S19);
        EXPECT_EQ(file.Create(nullptr), 0);
        EXPECT_FALSE(file.HasOpen());
        file.m_lsElement.append({0, 4, static_cast<BYTE *>(std::malloc(4))}); // freed at its end
    }
    EXPECT_EQ(files.calls(), Lines{});
    EXPECT_FALSE(std::has_virtual_destructor<CFiles>::value);
}

TEST_F(OpenFile, IsCopiedDeeply) {
    open(twoElements);
    file.SetOptimizeForOpen(true);
    file.GetElement();
    CProgramFile copy(file);
    file.m_lsElement[1].Data[0] = 0x99;
    file.Close();
    EXPECT_TRUE(copy.HasOpen());
    EXPECT_TRUE(copy.m_bOptimize);
    EXPECT_EQ(copy.m_StrPath, "/x/a.hex");
    EXPECT_EQ(copy.m_Type, HEX);
    EXPECT_EQ(copy.m_UiFileSize, 150u);
    EXPECT_EQ(copy.m_uiFileStatus, 100u);
    const PIMAGEELEMENT second = copy.GetElement();
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->Data[0], 0x22);
    double_->calls();
    EXPECT_EQ(copy.Save("/x/c.bin"), 0);
    EXPECT_EQ(double_->calls(), Lines{"FILES_ImageToFile path=/x/c.bin image=2 elements=2 bytes=150 -> 12340000"});
}

TEST_F(OpenFile, AnAssignmentReplacesWhatWasOpen) {
    open(twoElements);
    CProgramFile other;
    ASSERT_EQ(other.Open("/x/b.bin", &device), 0);
    other = file;
    EXPECT_EQ(other.m_StrPath, "/x/a.hex");
    EXPECT_EQ(other.GetElementCount(), 2);
    EXPECT_EQ(other.GetElement()->Data[0], 0x11);
    const CProgramFile &same = other;
    other = same;
    EXPECT_TRUE(other.HasOpen());
    EXPECT_EQ(other.m_lsElement.at(0).Data[99], 0x11);
}

TEST_F(OpenFile, ACopyOfAClosedFileIsClosedAndCallsNothing) {
    open(twoElements);
    file.Close();
    double_->calls();
    CProgramFile copy(file);
    EXPECT_FALSE(copy.HasOpen());
    EXPECT_EQ(double_->calls(), Lines{});
}

TEST_F(OpenFile, ACopyThatTheLibraryRefusesIsClosed) {
    open("FILES_SetImageElement status=15\n");
    CProgramFile copy(file);
    EXPECT_FALSE(copy.HasOpen());
    EXPECT_EQ(copy.GetElement(), nullptr);
}

class FailingCopy : public OpenFile, public testing::WithParamInterface<const char *> {};

TEST_P(FailingCopy, IsClosedAndHasItsElements) {
    open(GetParam());
    CProgramFile copy(file);
    EXPECT_FALSE(copy.HasOpen());
    EXPECT_EQ(copy.GetElementCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(EveryCall, FailingCopy,
                         testing::Values("FILES_GetImageNbElement status=13 nth=2\n", "FILES_CreateImage status=13\n",
                                         "FILES_GetImageElement status=13 nth=3\n",
                                         "FILES_GetImageElement status=13 nth=4\n"));

TEST_F(OpenFile, AnEmptyElementIsCopiedAsOne) {
    open("element address=08000000 length=0\n");
    CProgramFile copy;
    copy = file;
    ASSERT_TRUE(copy.HasOpen());
    ASSERT_EQ(copy.GetElementCount(), 1);
    EXPECT_NE(copy.m_lsElement.at(0).Data, nullptr);
    EXPECT_EQ(copy.m_lsElement.at(0).dwDataLength, 0u);
}

TEST_F(OpenFile, StoresNothingBehindTheLastElement) {
    open(twoElements);
    double_->calls();
    file.m_CurrentElementIndex = 2;
    EXPECT_EQ(file.SetElement(), CResult::SUCCESS);
    EXPECT_EQ(double_->calls(), Lines{});
}

} // namespace
