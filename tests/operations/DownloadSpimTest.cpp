#include "tests/operations/DownloadTest.h"

class DownloadSpimTest : public DownloadTest {};

TEST_F(DownloadSpimTest, SpimIsEnabledBeforeTheEraseAndAgainAfterTheRestart) {
    connect(f403_1);
    image("element address=08400000 length=4 fill=AB");
    parameters.m_bEnBank3 = true;
    parameters.m_bNeedRemap = true;
    parameters.m_bRemapFlag = true;
    parameters.m_bFlashType = 0x90;
    parameters.m_uiFlashSize = 16384;
    parameters.m_uiFlashDA = 0x100;
    EXPECT_EQ(download({"a.hex"}), 0);
    const std::string remap = "ZVBL_SPIMREMAP h=1001 remap=1";
    const std::string enable = "ZVBL_EnableBank3 h=1001 type=144 size=16777216 addr=00000100";
    EXPECT_EQ(calls({"ZVBL_SPIMREMAP", "ZVBL_EnableBank3", "ZVBL_ERASE", "ZVBL_DNLOAD", "ZVBL_GO"}),
              (Lines{remap, enable, eraseOf(32768), "ZVBL_DNLOAD h=1001 addr=08400000 len=4 data=ABABABAB optimise=0",
                     "ZVBL_GO h=1001 addr=080FFFFC", remap, enable}));
    EXPECT_EQ(std::count(events.begin(), events.end(), "INIT Enable Bank3"), 2);
}

TEST_F(DownloadSpimTest, AFailedSecondEnablingIsReturnedAtOnce) {
    connect(f403_1);
    image(oneSmall);
    parameters.m_bEnBank3 = true;
    parameters.m_bVerify = true;
    library.script("ZVBL_EnableBank3 status=0x14 nth=2");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 1u);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}), Lines());
    EXPECT_FALSE(bootLoader().m_ObOperation->IsDone());
}

TEST_F(DownloadSpimTest, KeysThatCannotBeWrittenEnableNothing) {
    connect(f403a);
    image(oneSmall);
    parameters.m_bEnBank3 = true;
    parameters.m_uiFlashDA = 0x1000;
    parameters.m_UserSystemDataArray = userSystemData(0xA5);
    parameters.m_UserSystemDataLen = 48;
    library.script("TARGET_SetUserSystemData status=5");
    EXPECT_EQ(download({"a.hex"}), CResult::COM_READ_FAIL);
    EXPECT_EQ(calls({"ZVBL_EnableBank3", "ZVBL_ERASE"}), Lines());
}

TEST_F(DownloadSpimTest, AFailedEnablingErasesNothing) {
    connect(f413);
    image(oneSmall);
    parameters.m_bEnBank3 = true;
    library.script("ZVBL_EnableBank3 status=0x14");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines());
}

TEST_F(DownloadSpimTest, KeysGoToTheChipBeforeAnEncryptedBankIsEnabled) {
    connect(f403a);
    image(oneSmall);
    parameters.m_bEnBank3 = true;
    parameters.m_uiFlashDA = 0x1000;
    parameters.m_UserSystemDataArray = userSystemData(0x00);
    parameters.m_UserSystemDataLen = 48;
    EXPECT_EQ(download({"a.hex"}), 0);
    const Lines order = calls({"TARGET_SetUserSystemData", "ZVBL_EnableBank3", "ZVBL_ERASE"});
    ASSERT_EQ(order.size(), 4u);
    EXPECT_EQ(order[0].substr(0, 64), "TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 data=A5FFFF")
        << "access protection stays as the chip has it";
    EXPECT_EQ(order[1].substr(0, 16), "ZVBL_EnableBank3");
    EXPECT_EQ(order[3].substr(0, 64), "TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 data=00FFFF")
        << "the finishing step writes all of it";
}

TEST_F(DownloadSpimTest, WithoutAnEncryptedRangeTheKeysCanWait) {
    connect(f403a);
    image(oneSmall);
    parameters.m_bEnBank3 = true;
    parameters.m_UserSystemDataArray = userSystemData(0xA5);
    parameters.m_UserSystemDataLen = 48;
    EXPECT_EQ(download({"a.hex"}), 0);
    const Lines order = calls({"TARGET_SetUserSystemData", "ZVBL_EnableBank3"});
    ASSERT_EQ(order.size(), 2u);
    EXPECT_EQ(order[0].substr(0, 16), "ZVBL_EnableBank3");
}

TEST_F(DownloadSpimTest, ACancelAfterSpimWasEnabledKeepsTheEraseAway) {
    connect(f403a);
    image(oneSmall);
    parameters.m_strDownPathFile = {path("a.hex")};
    parameters.m_bEnBank3 = true;
    bootLoader().DownloadToDevice(parameters);
    const std::string log = runCancelledAtFirstCall();
    EXPECT_NE(log.find("ZVBL_EnableBank3"), std::string::npos) << log;
    EXPECT_EQ(log.find("ZVBL_ERASE"), std::string::npos) << log;
    EXPECT_EQ(events.back(), "CANCEL");
}
