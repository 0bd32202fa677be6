#include "files/UserSystemDataFile.h"

#include "ModelTest.h"
#include "foundation/Result.h"

namespace {

using Lines = std::vector<std::string>;

TEST(UserSystemDataFile, ReadsTheFirstElementOnly) {
    const Workplace workplace;
    FilesDouble files(workplace, "element address=0 length=4096 fill=01\nelement address=2000 length=8\n"
                                 "element address=3000 length=8\n");
    CUserSystemDataFile file;
    EXPECT_EQ(file.Open("/x/o.bin", nullptr), 0);
    EXPECT_EQ(files.calls(), (Lines{"FILES_ImageFromFile path=/x/o.bin program=0 -> image=1 12340000",
                                    "FILES_GetImageNbElement image=1 count=3 -> 12340000",
                                    "FILES_GetImageElement image=1 index=0 data=null -> 12340000",
                                    "FILES_GetImageElement image=1 index=0 data=set -> 12340000"}));
    EXPECT_EQ(file.GetElementCount(), 1);
    EXPECT_EQ(file.m_UiFileSize, 4096u);
    EXPECT_EQ(file.m_StrPath, "/x/o.bin");
    EXPECT_EQ(file.GetElement()->Data[4095], 0x01);
    EXPECT_EQ(file.GetElement(), nullptr);
}

TEST(UserSystemDataFile, AFileWithoutElementsIsOpenAndEmpty) {
    const Workplace workplace;
    const FilesDouble files(workplace, "no-elements\n");
    CUserSystemDataFile file;
    EXPECT_EQ(file.Open("/x/o.bin", nullptr), 0);
    EXPECT_TRUE(file.HasOpen());
    EXPECT_EQ(file.GetElement(), nullptr);
}

struct FailureRow {
    const char *script;
    int code;
};

TEST(UserSystemDataFile, EveryFailureEndsTheOpeningWithItsCode) {
    const FailureRow rows[] = {{"FILES_ImageFromFile status=5\n", CResult::FILES_BADFORMAT},
                               {"FILES_GetImageNbElement status=14\n", CResult::FILES_NOTOPEN},
                               {"FILES_GetImageElement status=10 nth=2\n", CResult::FILES_UNEXPECTEDERROR},
                               {"FILES_GetImageElement status=77\n", CResult::UNKNOWN_ERROR}};
    for (const FailureRow &row : rows) {
        const Workplace workplace;
        const FilesDouble files(workplace, row.script);
        CUserSystemDataFile file;
        EXPECT_EQ(file.Open("/x/o.hex", nullptr), row.code) << row.script;
        EXPECT_EQ(file.GetElementCount(), 0);
    }
}

TEST(UserSystemDataFile, CreatesOneElementOfTheDevicesLength) {
    const Workplace workplace;
    FilesDouble files(workplace);
    CDevice device;
    device.m_UiUserSystemDataLen = 4096;
    CUserSystemDataFile file;
    EXPECT_EQ(file.Create(&device), 0);
    EXPECT_EQ(files.calls(), Lines{"FILES_CreateImage one=1 -> image=1 12340000"});
    const PIMAGEELEMENT element = file.GetElement();
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->dwAddress, 0u);
    EXPECT_EQ(element->dwDataLength, 4096u);
    EXPECT_EQ(file.m_UiFileSize, 4096u);
    element->Data[0] = 0xA5;
    EXPECT_EQ(file.SetElement(true), 0);
    EXPECT_EQ(files.calls(), Lines{"FILES_SetImageElement image=1 index=0 insert=1 address=00000000 length=4096 "
                                   "data=A5000000 -> 12340000"});
}

TEST(UserSystemDataFile, CreatesNothingWithoutADevice) {
    const Workplace workplace;
    FilesDouble files(workplace);
    CUserSystemDataFile file;
    ASSERT_EQ(file.Open("/x/o.bin", nullptr), 0);
    files.calls();
    EXPECT_EQ(file.Create(nullptr), CResult::UNKNOWN_ERROR);
    EXPECT_FALSE(file.HasOpen());
    EXPECT_EQ(files.calls(), Lines{"FILES_DestroyImage image=1 -> 12340000"});
}

TEST(UserSystemDataFile, ConvertsAFailureToCreate) {
    const Workplace workplace;
    const FilesDouble files(workplace, "FILES_CreateImage status=13\n");
    CDevice device;
    CUserSystemDataFile file;
    EXPECT_EQ(file.Create(&device), CResult::FILES_FILEGENERALERROR);
    EXPECT_EQ(file.GetElementCount(), 0);
}

TEST(UserSystemDataFile, ADeviceWithoutOptionBytesGetsAnEmptyElement) {
    const Workplace workplace;
    const FilesDouble files(workplace);
    CDevice device;
    CUserSystemDataFile file;
    EXPECT_EQ(file.Create(&device), CResult::SUCCESS);
    ASSERT_EQ(file.GetElementCount(), 1);
    EXPECT_EQ(file.m_lsElement.at(0).dwDataLength, 0u);
    EXPECT_NE(file.m_lsElement.at(0).Data, nullptr);
}

} // namespace
