// The jobs that check: the CRC of sectors, and the walk over image files.

#include "tests/integration/JobsTest.h"

class ChecksumJobsTest : public JobsTest {};

TEST_F(ChecksumJobsTest, TheCrcOfSectors) {
    connect("ZV32F403A_1024K");
    const Bytes image = program(4 * 2048 + 17);
    write(flashBase + 3 * 2048, image);
    FlashCRCParam parameters;
    parameters.m_uiStartAddress = flashBase + 3 * 2048;
    parameters.m_uiBeginSectorNum = 3;
    parameters.m_uiSectorNumbers = 5;
    control->FlashCRCCheck(parameters);
    EXPECT_EQ(run(), CResult::SUCCESS);
    EXPECT_EQ(end, "DONE");
    EXPECT_EQ(job<CFlashCRC>().m_CRCValue, witnessCrc(filledUp(image, 5 * 2048)));
    ASSERT_EQ(titles.size(), 1u);
    EXPECT_NE(titles[0].find(": Sector3--Sector7"), std::string::npos) << titles[0];
}

TEST_F(ChecksumJobsTest, SectorsThatThereAreNot) {
    connect("ZV32F403A_1024K");
    FlashCRCParam parameters;
    parameters.m_uiStartAddress = flashBase + 511 * 2048;
    parameters.m_uiSectorNumbers = 2;
    control->FlashCRCCheck(parameters);
    EXPECT_EQ(run(), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(job<CFlashCRC>().m_CRCValue, 0u);
}

TEST_F(ChecksumJobsTest, ImageFilesAreOpenedAndNothingIsWritten) {
    connect("ZV32F403A_1024K");
    const Bytes image = program(5000);
    FWCRCParam parameters;
    parameters.m_strDownPathFile = {writeHex(path("a.hex"), image, flashBase), writeBinary(path("b.bin"), image)};
    parameters.m_uiStartAddress = {0, flashBase + 0x4000};
    control->FirmwareCRCCheck(parameters);
    EXPECT_EQ(run(), CResult::SUCCESS);
    EXPECT_EQ(end, "DONE");
    ASSERT_EQ(titles.size(), 2u);
    EXPECT_NE(titles[0].find("(a.hex)"), std::string::npos) << titles[0];
    const CFWCRC &check = job<CFWCRC>();
    ASSERT_EQ(check.m_obProgramFile.size(), 2);
    EXPECT_EQ(check.m_InitInfo.m_strFilePath, path("b.bin"));
    EXPECT_EQ(check.m_InitInfo.m_uiFileSize, 5000u);
    EXPECT_EQ(check.m_uiAddressOffset, (QList<uint>{0, 0x4000})) << "binary files start at the flash by themselves";
    EXPECT_EQ(read(flashBase, 0x6000), Bytes(0x6000, 0xFF));
}

TEST_F(ChecksumJobsTest, AnImageFileThatIsNone) {
    connect("ZV32F403A_1024K");
    FWCRCParam parameters;
    parameters.m_strDownPathFile = {writeBinary(path("a.hex"), program(100))};
    control->FirmwareCRCCheck(parameters);
    EXPECT_EQ(run(), CResult::FILES_BADFORMAT);
    EXPECT_EQ(end, "ABEND");
}
