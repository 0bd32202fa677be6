// The download of projects: files in memory, part by part.

#include <algorithm>

#include "link/ZVBLLIB.h"
#include "tests/integration/JobsTest.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

constexpr uint password = 0x12345678;

HEXFILEPARTINFO part(uint address, const Bytes &bytes) {
    HEXFILEPARTINFO one;
    one.PartStartAddress = address;
    one.PartSize = static_cast<uint>(bytes.size());
    one.PartEndAddress = address + one.PartSize - 1;
    std::copy(bytes.begin(), bytes.end(), one.pData);
    return one;
}

SFileInfo file(const QList<HEXFILEPARTINFO> &parts) {
    SFileInfo one;
    one.FilePath = "/project/a.hex";
    one.LoadFileType = "HEX";
    one.StartAddress = parts.first().PartStartAddress;
    one.partInfo = parts;
    for (const HEXFILEPARTINFO &each : parts)
        one.FileSize += static_cast<int>(each.PartSize);
    return one;
}

} // namespace

class ProjectJobTest : public JobsTest {
protected:
    ProjectJobTest() { parameters.m_bVerify = true; }
    int download(const QList<SFileInfo> &files) {
        parameters.m_DownFileInfo = files;
        control->DownloadToDeviceProject(parameters);
        return run();
    }
    void enableSlib(ushort start, ushort last) {
        EnableSlibParam area;
        area.m_uiPassword = password;
        area.m_usStartSector = start;
        area.m_usStartDataSector = 0xFFFF;
        area.m_usEndSector = last;
        control->EnableSlib(area);
        ASSERT_EQ(run(), CResult::SUCCESS);
    }

    DLPROJECTParam parameters;
};

TEST_F(ProjectJobTest, PartsOfEveryLength) {
    connect("ZV32F403A_1024K");
    const Bytes odd = program(1025);
    const Bytes chunk = program(1024, 2);
    const Bytes few = program(3, 3);
    const Bytes large = program(65536, 4);
    EXPECT_EQ(download({file({part(flashBase, odd), part(flashBase + 0x1000, chunk)}),
                        file({part(flashBase + 0x2001, few), part(flashBase + 0x10000, large)})}),
              CResult::SUCCESS);
    EXPECT_EQ(end, "DONE");
    EXPECT_EQ(titles.size(), 2u);
    EXPECT_EQ(read(flashBase, 0x1000), filledUp(odd, 0x1000));
    EXPECT_EQ(read(flashBase + 0x1000, 0x1000), filledUp(chunk, 0x1000));
    EXPECT_EQ(read(flashBase + 0x2000, 5), (Bytes{0xFF, few[0], few[1], few[2], 0xFF}));
    EXPECT_EQ(read(flashBase + 0x10000, large.size()), large);
}

TEST_F(ProjectJobTest, ErasesItsSectorsOnly) {
    connect("ZV32F435_4032K");
    for (const uint sector : {0u, 1u, 2u, 3u})
        write(flashBase + sector * 4096, {1, 2, 3, 4});
    EXPECT_EQ(download({file({part(flashBase + 4096, program(4097))})}), CResult::SUCCESS);
    EXPECT_EQ(read(flashBase, 4), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(read(flashBase + 4096, 2 * 4096), filledUp(program(4097), 2 * 4096));
    EXPECT_EQ(read(flashBase + 3 * 4096, 4), (Bytes{1, 2, 3, 4}));
}

TEST_F(ProjectJobTest, AnImageInTheSlibAreaIsRefused) {
    connect("ZV32F403A_1024K");
    enableSlib(10, 12);
    const uint border = flashBase + 13 * 2048;
    EXPECT_EQ(download({file({part(border - 4, program(8))})}), CResult::SLIB_DOWNLOADFILE_IN_SLIBSECTOR_ERROR);
    EXPECT_EQ(end, "ABEND");
    EXPECT_EQ(read(border, 4), Bytes(4, 0xFF));
    EXPECT_EQ(chip->log(), "") << "nothing was sent";
    EXPECT_EQ(download({file({part(border, program(8))})}), CResult::SUCCESS) << "after it";
    EXPECT_EQ(read(border, 8), program(8));
}

TEST_F(ProjectJobTest, RemovesTheSlibAreaFirstWhereAsked) {
    connect("ZV32F403A_1024K");
    enableSlib(10, 12);
    parameters.m_bDisableSlib = true;
    parameters.m_uiDisablePassword = password + 1;
    const Bytes image = program(2048);
    EXPECT_EQ(download({file({part(flashBase + 10 * 2048, image)})}), CResult::SLIB_DISABLE_PASSWORD_ERROR);
    parameters.m_uiDisablePassword = password;
    EXPECT_EQ(download({file({part(flashBase + 10 * 2048, image)})}), CResult::SUCCESS);
    EXPECT_EQ(read(flashBase + 10 * 2048, image.size()), image);
}

TEST_F(ProjectJobTest, FromAProtectedChipToAProtectedChip) {
    connect("ZV32F403A_1024K");
    write(flashBase, {1, 2, 3, 4});
    control->AccessProtect(1);
    ASSERT_EQ(run(), CResult::SUCCESS);
    const Bytes image = program(1025);
    EXPECT_NE(download({file({part(flashBase, image)})}), CResult::SUCCESS);
    parameters.m_bRDUP = true;
    EXPECT_EQ(download({file({part(flashBase, image)})}), CResult::SUCCESS);
    EXPECT_EQ(read(flashBase, image.size()), image);
    parameters.m_bFAP = true;
    EXPECT_EQ(download({file({part(flashBase, image)})}), CResult::SUCCESS);
    EXPECT_TRUE(isProtected());
}

TEST_F(ProjectJobTest, SerialNumberUserSystemDataAndJump) {
    connect("ZV32F403A_1024K");
    ASSERT_EQ(control->GetUserSystemData(), CResult::SUCCESS);
    BYTE *element = nullptr;
    parameters.m_UserSystemDataLen = control->m_ObUserSystemData->GetElementData(element);
    const std::unique_ptr<BYTE[]> owner(element);
    element[4] = 0x5A; // the first data byte, and its complement
    element[5] = 0xA5;
    parameters.m_UserSystemDataArray = element;
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = flashBase + 0x8000;
    parameters.m_uiSNNumber = 0xA1B2C3D4;
    parameters.m_uiSNStep = 1;
    parameters.m_bJump = true;
    EXPECT_EQ(download({file({part(flashBase, program(64))})}), CResult::SUCCESS);
    EXPECT_EQ(job<CDownloadProject>().m_Parameters.m_uiSNNumber, 0xA1B2C3D5u);
    com->SetComTimeOut(100);
    EXPECT_TRUE(control->IsNeedReeonnect());
    chip->pressReset();
    com->SetComTimeOut(2000);
    ASSERT_EQ(control->Connect(), CResult::SUCCESS);
    EXPECT_EQ(read(flashBase + 0x8000, 4), (Bytes{0xD4, 0xC3, 0xB2, 0xA1}));
    EXPECT_EQ(compactUserData()[2], 0x5A);
}

TEST_F(ProjectJobTest, PartsInSpim) {
    connect("ZV32F403A_1024K");
    parameters.m_bEnBank3 = true;
    parameters.m_bNeedRemap = true;
    parameters.m_bRemapFlag = true;
    parameters.m_uiFlashSize = 1024;
    const Bytes image = program(4097);
    EXPECT_EQ(download({file({part(spimBase + 0x1000, image), part(flashBase, image)})}), CResult::SUCCESS);
    EXPECT_EQ(read(spimBase + 0x1000, 2 * 4096), filledUp(image, 2 * 4096));
    EXPECT_EQ(read(flashBase, image.size()), image);
}
