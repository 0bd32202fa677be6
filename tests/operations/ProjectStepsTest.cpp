#include "tests/operations/ProjectTest.h"

class ProjectStepsTest : public ProjectTest {};

TEST_F(ProjectStepsTest, KeysGoToTheChipBeforeAnEncryptedBankIsEnabled) {
    connect(f403a);
    BYTE userSystemData[48];
    for (int i = 0; i < 48; ++i)
        userSystemData[i] = i % 2 == 0 ? 0xFF : 0x00;
    parameters.m_UserSystemDataArray = userSystemData;
    parameters.m_UserSystemDataLen = sizeof userSystemData;
    parameters.m_bEnBank3 = true;
    parameters.m_uiFlashDA = 0x1000;
    EXPECT_EQ(download({file({part(0x08000000, 4)})}), 0);
    const Lines order = calls({"TARGET_SetUserSystemData", "ZVBL_EnableBank3"});
    ASSERT_EQ(order.size(), 3u);
    EXPECT_EQ(order[1].substr(0, 16), "ZVBL_EnableBank3");
    library.script("TARGET_SetUserSystemData status=5");
    EXPECT_EQ(download({file({part(0x08000000, 4)})}), CResult::COM_READ_FAIL);
    EXPECT_EQ(calls({"ZVBL_EnableBank3", "ZVBL_ERASE"}), Lines());
}

TEST_F(ProjectStepsTest, AnImageInTheSlibAreaIsRefused) {
    connect(f413);
    const struct {
        const char *status;
        int code;
    } cases[] = {
        {"enabled=1 start=1 datastart=65535 end=1", CResult::SLIB_DOWNLOADFILE_IN_SLIBSECTOR_ERROR},
        {"enabled=1 start=0 datastart=65535 end=4", CResult::SLIB_DOWNLOADFILE_IN_SLIBSECTOR_ERROR},
        {"enabled=1 start=2 datastart=65535 end=4", 0},
        {"enabled=0 start=65535 datastart=65535 end=65535", 0},
        {"enabled=0 start=0 datastart=0 end=0", 0},
        {"status=5", CResult::COM_READ_FAIL},
    };
    for (const auto &one : cases) {
        library.script(std::string("ZVBL_GetSlibStatus_Ex ") + one.status);
        EXPECT_EQ(download({file({part(0x08000800, 16)})}), one.code) << one.status;
        EXPECT_EQ(calls({"ZVBL_ERASE"}).empty(), one.code != 0) << one.status;
    }
    connect(f413, "none");
    EXPECT_EQ(download({file({part(0x08000800, 16)})}), 0) << "a chip without sLib is not asked";
    EXPECT_EQ(calls({"ZVBL_GetSlibStatus_Ex"}), Lines());
}

TEST_F(ProjectStepsTest, TheStepsBeforeInTheirOrder) {
    connect(f403a);
    parameters.m_bRDUP = true;
    parameters.m_bDisableSlib = true;
    parameters.m_uiDisablePassword = 7;
    parameters.m_bEnBank3 = true;
    parameters.m_uiFlashSize = 4;
    parameters.m_bEnableSlib = true;
    parameters.m_uiEnablePassword = 8;
    parameters.m_usStartSector = 100;
    parameters.m_usStartDataSector = 0xFFFF;
    parameters.m_usEndSector = 101;
    library.script("ZVBL_GetSlibStatus enabled=1 nth=1\n"
                   "ZVBL_GetSlibStatus_Ex enabled=0 nth=1\n"
                   "ZVBL_GetSlibStatus_Ex enabled=1 start=100 datastart=65535 end=101 from=2");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), 0);
    const Lines order = calls({"ZVBL_ACCESS_PERM_UNPROTECT", "ZVBL_DisableSlib", "ZVBL_GetSlibStatus_Ex",
                               "ZVBL_EnableBank3", "ZVBL_ERASE", "ZVBL_EnableSlib", "ZVBL_DNLOAD", "ZVBL_ResetMCU"});
    Lines names;
    for (const std::string &call : order)
        names.push_back(call.substr(0, call.find(' ')));
    EXPECT_EQ(names,
              (Lines{"ZVBL_ACCESS_PERM_UNPROTECT", "ZVBL_DisableSlib", "ZVBL_GetSlibStatus_Ex", "ZVBL_EnableBank3",
                     "ZVBL_ERASE", "ZVBL_EnableSlib", "ZVBL_GetSlibStatus_Ex", "ZVBL_DNLOAD", "ZVBL_ResetMCU"}));
    EXPECT_EQ(order[3], "ZVBL_EnableBank3 h=1001 type=144 size=4096 addr=00000000");
}

TEST_F(ProjectStepsTest, AFailedStepBeforeEndsThePreparation) {
    connect(f413);
    parameters.m_bRDUP = true;
    library.script("ZVBL_ACCESS_PERM_UNPROTECT status=0x13");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(events, Lines{"ABEND"});
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines());
}

TEST_F(ProjectStepsTest, NoResetFollowsAFailure) {
    connect(f413);
    parameters.m_bEnableSlib = true;
    parameters.m_uiEnablePassword = 8;
    parameters.m_usStartSector = parameters.m_usEndSector = 100;
    parameters.m_usStartDataSector = 0xFFFF;
    library.script("ZVBL_GetSlibStatus_Ex enabled=1 start=100 datastart=65535 end=100\nZVBL_DNLOAD status=5");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::COM_READ_FAIL);
    EXPECT_EQ(calls({"ZVBL_ResetMCU"}), Lines());
}

TEST_F(ProjectStepsTest, JumpsToTheFilesOwnStartAddress) {
    connect(f413);
    parameters.m_bJump = true;
    EXPECT_EQ(download({file({part(0x08000000, 16)}, "HEX", 0x08000188)}), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines{"ZVBL_GO h=1001 addr=08000188"});
}

TEST_F(ProjectStepsTest, TheFinishingSteps) {
    connect(f413);
    BYTE userSystemData[48];
    for (int i = 0; i < 48; ++i)
        userSystemData[i] = i % 2 == 0 ? 0xFF : 0x00;
    parameters.m_UserSystemDataArray = userSystemData; // stays the caller's
    parameters.m_UserSystemDataLen = sizeof userSystemData;
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = 0x08000800;
    parameters.m_uiSNNumber = 1;
    parameters.m_uiSNStep = 1;
    parameters.m_bFAP = true;
    library.script("TARGET_GetUserSystemData data=00 from=5");
    EXPECT_EQ(download({file({part(0x08000000, 4)})}), 0) << library.log();
    const Lines order = calls({"ZVBL_DNLOAD", "ZVBL_VERIFY", "TARGET_SetUserSystemData", "ZVBL_ACCESS_PROTECT_LEVEL"});
    ASSERT_EQ(order.size(), 5u);
    EXPECT_EQ(order[1], "ZVBL_DNLOAD h=1001 addr=08000800 len=4 data=01000000 optimise=0");
    EXPECT_EQ(order[3].substr(0, 60), "TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 data=A5");
    EXPECT_EQ(order[4], "ZVBL_ACCESS_PROTECT_LEVEL h=1001 level=1");
    EXPECT_EQ(userSystemData[0], 0xFF) << "the caller's bytes stay";
    EXPECT_EQ(job().m_Parameters.m_uiSNNumber, 2u);
    bootLoader().FreeOperation();
    EXPECT_EQ(userSystemData[1], 0x00);
}

TEST_F(ProjectStepsTest, WithoutAStepBeforeItACancelDoesNotKeepTheEraseAway) {
    connect(f413);
    parameters.m_DownFileInfo = {file({part(0x08000000, 16)})};
    bootLoader().DownloadToDeviceProject(parameters);
    const std::string log = runCancelledAtFirstCall();
    EXPECT_NE(log.find("ZVBL_ERASE h=1001 selector=1 sector=0"), std::string::npos) << log;
    EXPECT_EQ(log.find("ZVBL_DNLOAD"), std::string::npos) << log;
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(ProjectStepsTest, ACancelAfterSpimWasEnabledKeepsTheEraseAway) {
    connect(f403a);
    parameters.m_bEnBank3 = true;
    parameters.m_DownFileInfo = {file({part(0x08000000, 16)})};
    bootLoader().DownloadToDeviceProject(parameters);
    const std::string log = runCancelledAtFirstCall();
    EXPECT_EQ(log.find("ZVBL_ERASE"), std::string::npos) << log;
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(ProjectStepsTest, AFinishWithoutStepsIsNotCancelled) {
    connect(f413);
    CDownloadProject project(&bootLoader());
    parameters.m_DownFileInfo = {file({part(0x08000000, 16)}, "HEX", 0x08000188)};
    parameters.m_bJump = true;
    project.SetParameters(&parameters);
    project.CallCommand(COMMAND_CANCEL);
    EXPECT_EQ(project.ActionDone(), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines{"ZVBL_GO h=1001 addr=08000188"});
}

TEST_F(ProjectStepsTest, AnSlibThatCannotBeEnabledEndsTheJobBeforeTheWrite) {
    connect(f413);
    parameters.m_bEnableSlib = true;
    parameters.m_uiEnablePassword = 1;
    parameters.m_usStartDataSector = 0xFFFF;
    library.script("ZVBL_EnableSlib status=0x14");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::SYS_CMD_FAIL);
    EXPECT_TRUE(calls({"ZVBL_DNLOAD"}).empty());
}

TEST_F(ProjectStepsTest, AFailedFinishingStepEndsTheJobWithItsCode) {
    connect(f413);
    parameters.m_bWriteSN = parameters.m_bJump = true;
    parameters.m_uiSNAddress = 0x08000800;
    library.script("ZVBL_DNLOAD status=4 nth=2");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::COM_SEND_FAIL);
    EXPECT_EQ(events.back(), "ABEND");
    EXPECT_EQ(library.log().find("ZVBL_GO"), std::string::npos);

    std::vector<BYTE> bytes(48, 0xFF);
    parameters.m_bWriteSN = false;
    parameters.m_bFAP = true;
    parameters.m_UserSystemDataArray = bytes.data();
    parameters.m_UserSystemDataLen = 48;
    library.script("TARGET_SetUserSystemData status=4");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::COM_SEND_FAIL);
}

TEST_F(ProjectStepsTest, PartsThatLieInNoSectorAreRefused) {
    connect(f413);
    parameters.m_enEraseMode = ERASEMODE_NONE;
    EXPECT_EQ(download({file({part(0x20000000, 16)})}), CResult::UNKNOWN_ERROR);
    EXPECT_TRUE(calls({"ZVBL_DNLOAD"}).empty());
}
