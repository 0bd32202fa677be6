// The finishing steps of a download, by what they leave in the chip.

#include <algorithm>

#include "tests/integration/JobsTest.h"
#include "usersystemdata/CUserSystemData.h"

class DownloadJobTest : public JobsTest {
protected:
    int download(const std::string &file) {
        parameters.m_strDownPathFile = {file};
        parameters.m_uiStartAddress = {flashBase};
        parameters.m_bVerify = true;
        control->DownloadToDevice(parameters);
        return run();
    }
    // The chip's option bytes in the element form, for the job to delete.
    void copyUserSystemData() {
        ASSERT_EQ(control->GetUserSystemData(), CResult::SUCCESS);
        parameters.m_UserSystemDataLen = control->m_ObUserSystemData->GetElementData(parameters.m_UserSystemDataArray);
    }
    // An item of the element form and its complement.
    void setItem(std::size_t item, BYTE value) {
        parameters.m_UserSystemDataArray[2 * item] = value;
        parameters.m_UserSystemDataArray[2 * item + 1] = static_cast<BYTE>(~value);
    }

    const Bytes image = program(3000);
    DownloadParam parameters;
};

TEST_F(DownloadJobTest, SerialNumber) {
    connect("ZV32F403A_1024K");
    write(flashBase + 0x4000, {1, 2, 3, 4, 5, 6, 7, 8}); // of an earlier life: the sector is erased with the rest
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = flashBase + 0x4002;
    parameters.m_uiSNNumber = 0x11223344;
    parameters.m_uiSNStep = 0x10;
    EXPECT_EQ(download(writeHex(path("a.hex"), image, flashBase)), CResult::SUCCESS);
    EXPECT_EQ(end, "DONE");
    EXPECT_EQ(read(flashBase, image.size()), image);
    EXPECT_EQ(read(flashBase + 0x4000, 8), (Bytes{0xFF, 0xFF, 0x44, 0x33, 0x22, 0x11, 0xFF, 0xFF}));
    EXPECT_EQ(job<CDownload>().m_Parameters.m_uiSNNumber, 0x11223354u);
}

TEST_F(DownloadJobTest, ASerialNumberInsideTheImageIsRefused) {
    connect("ZV32F403A_1024K");
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = flashBase + 0x100;
    parameters.m_uiSNNumber = 7;
    parameters.m_uiSNStep = 1;
    EXPECT_EQ(download(writeBinary(path("a.bin"), image)), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(end, "ABEND");
    EXPECT_EQ(job<CDownload>().m_Parameters.m_uiSNNumber, 7u) << "a number that was not used is not spent";
    EXPECT_EQ(read(flashBase, image.size()), image);
}

TEST_F(DownloadJobTest, AccessProtectionComesLast) {
    connect("ZV32F403A_1024K");
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = flashBase + 0x4000;
    parameters.m_bFAP = true;
    parameters.m_bFAPLevel = 1;
    copyUserSystemData();
    setItem(0, 0x00); // is not taken: the protection is a step of its own
    setItem(1, 0xFE);
    EXPECT_EQ(download(writeHex(path("a.hex"), image, flashBase)), CResult::SUCCESS);
    EXPECT_TRUE(isProtected());
    EXPECT_EQ(control->ReadoutUnProtectNoThread(), CResult::SUCCESS);
    EXPECT_FALSE(isProtected());
}

TEST_F(DownloadJobTest, UserSystemData) {
    connect("ZV32F403A_1024K");
    copyUserSystemData();
    setItem(1, 0xFE);
    setItem(2, 0x5A);
    EXPECT_EQ(download(writeHex(path("a.hex"), image, flashBase)), CResult::SUCCESS);
    EXPECT_EQ(end, "DONE");
    const Bytes after = compactUserData();
    EXPECT_EQ(after[0], 0xA5);
    EXPECT_EQ(after[1], 0xFE);
    EXPECT_EQ(after[2], 0x5A);
    EXPECT_TRUE(std::all_of(after.begin() + 4, after.begin() + 8, [](BYTE byte) { return byte == 0xFF; }));
    EXPECT_EQ(read(flashBase, image.size()), image);
}

TEST_F(DownloadJobTest, AJumpLeavesTheBootloader) {
    connect("ZV32F403A_1024K");
    parameters.m_bJump = true;
    EXPECT_EQ(download(writeHex(path("a.hex"), image, flashBase + 0x1000)), CResult::SUCCESS);
    EXPECT_EQ(end, "DONE");
    EXPECT_TRUE(control->m_bHasJumpToUserProgram);
    com->SetComTimeOut(100);
    EXPECT_TRUE(control->IsNeedReeonnect()) << "the program runs, nobody answers";
    chip->pressReset();
    com->SetComTimeOut(2000);
    EXPECT_EQ(control->Connect(), CResult::SUCCESS);
    EXPECT_FALSE(control->m_bHasJumpToUserProgram);
    EXPECT_EQ(read(flashBase + 0x1000, image.size()), image);
}

TEST_F(DownloadJobTest, AProtectedSectorIsRefusedBeforeAnythingIsSent) {
    connect("ZV32F413_256K");
    write(flashBase, {1, 2, 3, 4});
    control->EraseProgramProtect({2});
    EXPECT_EQ(run(), CResult::SUCCESS);
    EXPECT_EQ(download(writeHex(path("a.hex"), program(5000), flashBase)), CResult::SYS_ERASEPROGRAM_PROTECTION);
    EXPECT_EQ(read(flashBase, 8), (Bytes{1, 2, 3, 4, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(chip->log(), "");
}

TEST_F(DownloadJobTest, TheFirst403EnablesSpimAgainForItsVerify) {
    connect("ZV32F403_1_1024K");
    parameters.m_bEnBank3 = true;
    parameters.m_bFlashType = 0x90;
    parameters.m_uiFlashSize = 1024;
    EXPECT_EQ(download(writeHex(path("a.hex"), image, spimBase + 0x2000)), CResult::SUCCESS);
    EXPECT_EQ(end, "DONE");
    EXPECT_EQ(read(spimBase + 0x2000, image.size()), image);
}

TEST_F(DownloadJobTest, AnSlibAreaBesideTheImage) {
    connect("ZV32F403A_1024K");
    parameters.m_bEnableSlib = true;
    parameters.m_uiPassword = 0x12345678;
    parameters.m_usStartSector = 20;
    parameters.m_usStartDataSector = 0xFFFF;
    parameters.m_usEndSector = 21;
    const Bytes library = program(100, 9);
    write(flashBase + 20 * 2048, library);
    EXPECT_EQ(download(writeHex(path("a.hex"), image, flashBase)), CResult::SUCCESS);
    EXPECT_EQ(read(flashBase, image.size()), image);
    EXPECT_EQ(read(flashBase + 20 * 2048, 100), Bytes(100, 0xFF)) << "hidden";
}
