#include "link/Reconnect.h"
#include "tests/link/LinkTest.h"

namespace {

const std::string oneAttempt = "sleep 2000\nInterface_Open h=1001\n";
const std::string usartConnect =
    "sleep 100\nZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\nZVBL_ZV32ISP_TOOL h=1001\nZVBL_GET h=1001\n";
const std::string optionBytesRead = "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n";

} // namespace

class ResetTest : public LinkTest {
protected:
    CBootLoader &chip() {
        writeUsualMap();
        return identified();
    }
};

TEST_F(ResetTest, ReconnectAtTheFirstAttempt) {
    open(USART);
    EXPECT_EQ(bootLoader().Reconnect(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "Interface_Close h=1001\n" + oneAttempt + usartConnect);
}

TEST_F(ResetTest, ReconnectAtTheThirdAttempt) {
    open(USART);
    library.script("Interface_Open status=3 to=2");
    EXPECT_EQ(bootLoader().Reconnect(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "Interface_Close h=1001\n" + oneAttempt + oneAttempt + oneAttempt + usartConnect);
}

TEST_F(ResetTest, FiveFailedAttemptsGiveTheLastStatusAndNoConnect) {
    open(USART);
    library.script("Interface_Open status=3\nInterface_Open status=4 nth=5\nInterface_Close status=1");
    EXPECT_EQ(bootLoader().Reconnect(), CResult::COM_SEND_FAIL);
    EXPECT_EQ(library.log(),
              "Interface_Close h=1001\n" + oneAttempt + oneAttempt + oneAttempt + oneAttempt + oneAttempt);
}

TEST_F(ResetTest, TheCodeOfConnectIsTheResult) {
    open(USART);
    library.script("ZVBL_Init_BL status=0x11");
    EXPECT_EQ(bootLoader().Reconnect(), CResult::SYS_CANT_INIT_BL);
}

TEST_F(ResetTest, AnEmptyUsbDeviceListEndsTheTryingAndConnectsAllTheSame) {
    open(USBDFU);
    library.script("ZVBL_GetZVDeviceList count=0\nZVBL_GET status=1");
    EXPECT_EQ(bootLoader().Reconnect(), CResult::COM_NOT_OPENED);
    EXPECT_EQ(library.log(), "Interface_Close h=0\nsleep 2000\nTARGET_SetComIntType type=1\n"
                             "ZVBL_GetZVDeviceList count=99\nsleep 100\nZVBL_GET h=0\n");
}

TEST_F(ResetTest, AUsbDeviceThatIsBackIsOpened) {
    open(USBDFU);
    library.script("Interface_Open status=3 nth=1");
    EXPECT_EQ(bootLoader().Reconnect(), CResult::SUCCESS);
    const std::string attempt = "sleep 2000\nTARGET_SetComIntType type=1\nZVBL_GetZVDeviceList count=99\n"
                                "Interface_Open h=0\n";
    EXPECT_EQ(library.log(), "Interface_Close h=0\n" + attempt + attempt + "sleep 100\nZVBL_GET h=0\n");
}

TEST_F(ResetTest, ResetMcu) {
    open(USART);
    EXPECT_EQ(bootLoader().ResetMcu(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "ZVBL_ResetMCU h=1001\nInterface_Close h=1001\n" + oneAttempt + usartConnect);
    library.clearLog();
    library.script("ZVBL_ResetMCU status=0x13");
    EXPECT_EQ(bootLoader().ResetMcu(), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(library.log(), "ZVBL_ResetMCU h=1001\n");
}

TEST_F(ResetTest, ResetMcuPassesTheCodeOfTheReconnect) {
    open(USART);
    library.script("ZVBL_GET status=5");
    EXPECT_EQ(bootLoader().ResetMcu(), CResult::COM_READ_FAIL);
    library.script("Interface_Open status=3");
    EXPECT_EQ(bootLoader().ResetMcu(), CResult::COM_CANT_OPEN_COM);
}

TEST_F(ResetTest, ResetByAJumpToTheLastWordOfFlash) {
    CBootLoader &control = chip();
    EXPECT_EQ(control.ResetMcu403B(), CResult::SUCCESS);
    EXPECT_EQ(library.log(),
              optionBytesRead + "ZVBL_GO h=1001 addr=080FFFFC\nInterface_Close h=1001\n" + oneAttempt + usartConnect);
    EXPECT_FALSE(control.m_bHasJumpToUserProgram) << "the chip is back in its bootloader";
}

TEST_F(ResetTest, ResetByAJumpPassesTheCodeOfTheJump) {
    CBootLoader &control = chip();
    library.script("ZVBL_GO status=5");
    EXPECT_EQ(control.ResetMcu403B(), CResult::COM_READ_FAIL);
    EXPECT_EQ(library.log(), optionBytesRead + "ZVBL_GO h=1001 addr=080FFFFC\n");
}

TEST_F(ResetTest, ResetByAJumpNeedsADevice) {
    open(USART);
    EXPECT_EQ(bootLoader().ResetMcu403B(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(library.log(), "");
}

TEST_F(ResetTest, JumpToTheUserProgram) {
    CBootLoader &control = chip();
    EXPECT_EQ(control.JumpToUserProgram(0x08004000), CResult::SUCCESS);
    EXPECT_TRUE(control.m_bHasJumpToUserProgram);
    EXPECT_EQ(library.log(), optionBytesRead + "ZVBL_GO h=1001 addr=08004000\n");
}

TEST_F(ResetTest, NoJumpOnAProtectedChip) {
    CBootLoader &control = chip();
    for (const char *answer : {"data=CC", "data=FF", "status=0x13", "status=0x14"}) {
        library.clearLog();
        library.script(std::string("TARGET_GetUserSystemData ") + answer);
        EXPECT_EQ(control.JumpToUserProgram(0x08000000), CResult::SYS_ACCESS_PROTECTION) << answer;
        EXPECT_EQ(library.log(), optionBytesRead);
    }
}

TEST_F(ResetTest, NoJumpWhenTheCheckCannotBeMade) {
    CBootLoader &control = chip();
    library.script("TARGET_GetUserSystemData status=5");
    EXPECT_EQ(control.JumpToUserProgram(0x08000000), CResult::COM_READ_FAIL);
    EXPECT_EQ(library.log(), optionBytesRead);
}

TEST_F(ResetTest, AFailedJumpIsNotRemembered) {
    CBootLoader &control = chip();
    library.script("ZVBL_GO status=0x14");
    EXPECT_EQ(control.JumpToUserProgram(0x08000000), CResult::SYS_CMD_FAIL);
    EXPECT_FALSE(control.m_bHasJumpToUserProgram);
}

TEST_F(ResetTest, EnableSpimCountsInMegabytes) {
    open(USART);
    EnBank3Param param;
    param.m_bNeedRemap = true; // no part in this call
    param.m_bFlashType = 2;
    param.m_uiFlashSize = 16;
    param.m_uiFlashDA = 0x08410000;
    EXPECT_EQ(bootLoader().EnableSPIM(param), 0);
    EXPECT_EQ(library.log(), "ZVBL_EnableBank3 h=1001 type=2 size=16777216 addr=08410000\n");
    library.clearLog();
    param.m_bRemapFlag = true;
    EXPECT_EQ(bootLoader().EnableSPIM(param), 0);
    EXPECT_EQ(library.log(),
              "ZVBL_SPIMREMAP h=1001 remap=1\nZVBL_EnableBank3 h=1001 type=2 size=16777216 addr=08410000\n");
}

TEST_F(ResetTest, EnableSpimConvertsTheRemapAndNotTheEnabling) {
    open(USART);
    EnBank3Param param;
    param.m_bRemapFlag = true;
    library.script("ZVBL_SPIMREMAP status=0x13");
    EXPECT_EQ(bootLoader().EnableSPIM(param), CResult::SYS_CMD_NOT_ALLOWED);
    library.script("ZVBL_EnableBank3 status=0x13");
    EXPECT_EQ(bootLoader().EnableSPIM(param), 0x13);
}
