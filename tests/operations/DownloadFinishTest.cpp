#include "tests/operations/DownloadTest.h"

class DownloadFinishTest : public DownloadTest {};

TEST_F(DownloadFinishTest, TheFinishingStepsInTheirOrder) {
    connect(f413, "all,-ACCESS_LEVEL_PROTECT_CMD");
    image(oneSmall);
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = 0x08000800;
    parameters.m_uiSNNumber = 0x01020304;
    parameters.m_UserSystemDataArray = userSystemData(0x00);
    parameters.m_UserSystemDataLen = 48;
    parameters.m_bFAP = true;
    parameters.m_bFAPLevel = 1;
    // The last of the reads is the one after the protection.
    library.script("TARGET_GetUserSystemData data=00 from=5\nZVBL_GET caps=all,-ACCESS_LEVEL_PROTECT_CMD");
    EXPECT_EQ(download({"a.hex"}), 0) << library.log();
    const Lines order = calls({"ZVBL_DNLOAD", "ZVBL_VERIFY", "TARGET_SetUserSystemData", "ZVBL_ACCESS_PROTECT"});
    ASSERT_EQ(order.size(), 5u);
    EXPECT_EQ(order[1], "ZVBL_DNLOAD h=1001 addr=08000800 len=4 data=04030201 optimise=0");
    EXPECT_EQ(order[2], "ZVBL_VERIFY h=1001 addr=08000800 len=4 data=04030201 optimise=0");
    EXPECT_EQ(order[3].substr(0, 64), "TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 data=A5FFFF")
        << "the protection step alone decides about the protection";
    EXPECT_EQ(order[4], "ZVBL_ACCESS_PROTECT h=1001");
}

TEST_F(DownloadFinishTest, WithoutAProtectionStepUserSystemDataGoAsTheyAre) {
    connect(f413);
    image(oneSmall);
    parameters.m_UserSystemDataArray = userSystemData(0x00);
    parameters.m_UserSystemDataLen = 48;
    EXPECT_EQ(download({"a.hex"}), 0);
    const Lines written = calls({"TARGET_SetUserSystemData"});
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(written[0].substr(0, 64), "TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 data=00FFFF");
}

TEST_F(DownloadFinishTest, JumpsToTheFirstElement) {
    connect(f413);
    image("element address=08000100 length=4 fill=AB\nelement address=08000000 length=4 fill=CD");
    parameters.m_bJump = true;
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines{"ZVBL_GO h=1001 addr=08000100"});
    EXPECT_TRUE(bootLoader().m_bHasJumpToUserProgram);
    parameters.m_uiStartAddress = {0x08002000};
    EXPECT_EQ(download({"a.bin"}), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines{"ZVBL_GO h=1001 addr=08002000"});
}

TEST_F(DownloadFinishTest, AFailedFinishingStepEndsTheJob) {
    connect(f413);
    image(oneSmall);
    parameters.m_bJump = true;
    parameters.m_bFAP = true;
    library.script("ZVBL_ACCESS_PROTECT status=0x13");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines());
}

TEST_F(DownloadFinishTest, SlibIsEnabledAfterTheEraseAndTakesEffectByAReset) {
    connect(f413);
    image(oneSmall);
    parameters.m_bEnableSlib = true;
    parameters.m_uiPassword = 0x11223344;
    parameters.m_usStartSector = 10;
    parameters.m_usStartDataSector = 12;
    parameters.m_usEndSector = 20;
    library.script("ZVBL_GetSlibStatus_Ex enabled=1 start=10 datastart=12 end=20");
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE", "ZVBL_EnableSlib", "ZVBL_DNLOAD", "ZVBL_ResetMCU"}),
              (Lines{eraseOf(0), "ZVBL_EnableSlib h=1001 password=11223344 start=10 datastart=12 end=20",
                     "ZVBL_DNLOAD h=1001 addr=08000000 len=4 data=ABABABAB optimise=0", "ZVBL_ResetMCU h=1001"}));
}

TEST_F(DownloadFinishTest, AFailureAfterTheEnablingResetsAndKeepsItsCode) {
    connect(f413);
    image(oneSmall);
    withSlib("ZVBL_DNLOAD status=5\nZVBL_ResetMCU status=4");
    EXPECT_EQ(download({"a.hex"}), CResult::COM_READ_FAIL);
    EXPECT_EQ(calls({"ZVBL_ResetMCU"}).size(), 1u);
}

TEST_F(DownloadFinishTest, AFailedResetAfterTheSlibIsTheResult) {
    connect(f413);
    image(oneSmall);
    withSlib("ZVBL_ResetMCU status=4");
    EXPECT_EQ(download({"a.hex"}), CResult::COM_SEND_FAIL);
    EXPECT_EQ(events.back(), "ABEND");
}

TEST_F(DownloadFinishTest, CancelAfterTheSlibResetsAndWritesNothing) {
    connect(f413);
    image(oneSmall);
    withSlib();
    onEvent = [&](InfoType) {
        if (!calls({"ZVBL_GetSlibStatus_Ex"}).empty())
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_ResetMCU"}).size(), 1u);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}), Lines());
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(DownloadFinishTest, AFailedFinishingStepResetsWhereSlibWasEnabled) {
    connect(f413);
    image(oneSmall);
    parameters.m_bFAP = true;
    withSlib("ZVBL_ACCESS_PROTECT status=0x13");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(calls({"ZVBL_ResetMCU"}).size(), 1u);
}

TEST_F(DownloadFinishTest, AnSlibThatCannotBeEnabledEndsTheJobBeforeTheWrite) {
    connect(f413);
    image(oneSmall);
    withSlib("ZVBL_EnableSlib status=0x14");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_FAIL);
    EXPECT_TRUE(calls({"ZVBL_DNLOAD"}).empty());
}
