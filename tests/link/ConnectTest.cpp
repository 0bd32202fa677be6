#include "tests/link/LinkTest.h"

class ConnectTest : public LinkTest {
protected:
    void expectConnect(LinkType type, const std::string &log) {
        open(type);
        EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
        EXPECT_EQ(library.log(), log);
        EXPECT_EQ(bootLoader().m_pCmds->GET_CMD, 1);
        EXPECT_EQ(bootLoader().m_pCmds->ACCESS_LEVEL_PROTECT_CMD, 1);
    }
};

TEST_F(ConnectTest, DefaultsOfTheBootloaderControl) {
    open(USART);
    const CBootLoader &control = bootLoader();
    EXPECT_EQ(control.m_ObDevice, nullptr);
    EXPECT_FALSE(control.HasInitDevice());
    EXPECT_EQ(control.m_ObUserSystemData, nullptr);
    EXPECT_EQ(control.m_ObUserSystemDataFile, nullptr);
    EXPECT_EQ(control.m_ObOperation, nullptr);
    EXPECT_FALSE(control.m_bHasJumpToUserProgram);
    EXPECT_EQ(control.m_BID, 0);
    EXPECT_EQ(control.m_uiAddr, 0x3Cu);
    EXPECT_EQ(control.m_ulRate, 400000u);
    EXPECT_EQ(control.m_bDutyCycle, 0);
    EXPECT_EQ(control.m_uiCANSpeed, 2u);
    EXPECT_EQ(control.m_ulSPISpeed, 150000u);
    EXPECT_EQ(control.m_pCmds->GET_CMD, 0);
}

// Jobs read their port tag from the first word of the object.
TEST_F(ConnectTest, TheHandleComesFirst) {
    open(USART);
    EXPECT_EQ(static_cast<void *>(&bootLoader()), static_cast<void *>(&bootLoader().m_handle));
    EXPECT_EQ(static_cast<void *>(com.get()), static_cast<void *>(&com->m_handle));
}

TEST_F(ConnectTest, ClosingTheLinkFreesTheJob) {
    open(USART);
    giveJob(bootLoader());
    const int before = freedJobs;
    com->Close();
    EXPECT_EQ(freedJobs, before + 1);
}

TEST_F(ConnectTest, Usart) {
    expectConnect(USART, "ZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\nZVBL_ZV32ISP_TOOL h=1001\nZVBL_GET h=1001\n");
}

TEST_F(ConnectTest, UsartDoesNotLookAtTheToolExchange) {
    open(USART);
    library.script("ZVBL_ZV32ISP_TOOL status=0x13");
    EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
}

TEST_F(ConnectTest, UsartByTheControlLines) {
    open(USART);
    com->SetBootSwitch(AUTOMATIC);
    com->SetBootOptionIndex(1);
    EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "ZVBL_SetDtr h=1001 level=0\nsleep 100\nsleep 100\n"
                             "ZVBL_SetDtr h=1001 level=1\nsleep 200\nsleep 200\n"
                             "ZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\nZVBL_ZV32ISP_TOOL h=1001\nZVBL_GET h=1001\n");
}

TEST_F(ConnectTest, UsartWithAWrongAutoConnectIndexGoesOn) {
    open(USART);
    com->SetBootSwitch(AUTOMATIC);
    com->SetBootOptionIndex(13);
    EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "ZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\nZVBL_ZV32ISP_TOOL h=1001\nZVBL_GET h=1001\n");
}

TEST_F(ConnectTest, UsbDfuNeedsNoStartAndFillsTheCapabilities) {
    expectConnect(USBDFU, "ZVBL_GET h=0\n");
}

TEST_F(ConnectTest, I2c) {
    expectConnect(I2C, "ZVBL_Init_BL h=1001 addr=3C rate=400000 duty=0\nZVBL_GET h=1001\n");
}

TEST_F(ConnectTest, I2cWithSettingsOfItsOwn) {
    open(I2C);
    bootLoader().SetI2CSettings(0x12345, 100000, 16);
    EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "ZVBL_Init_BL h=1001 addr=2345 rate=100000 duty=16\nZVBL_GET h=1001\n");
}

TEST_F(ConnectTest, Can) {
    expectConnect(CAN, "ZVBL_Init_BL h=1001 addr=0 rate=2 duty=0\nZVBL_SetSpeed h=1001 speed=2\nZVBL_GET h=1001\n");
}

TEST_F(ConnectTest, CanSpeedIsTheSettingOfTheSecondCall) {
    open(CAN);
    bootLoader().SetCANSettings(4);
    EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
    EXPECT_EQ(library.log(),
              "ZVBL_Init_BL h=1001 addr=0 rate=2 duty=0\nZVBL_SetSpeed h=1001 speed=4\nZVBL_GET h=1001\n");
}

TEST_F(ConnectTest, Spi) {
    expectConnect(SPI, "ZVBL_Init_BL h=1001 addr=0 rate=150000 duty=0\nZVBL_GET h=1001\n");
    bootLoader().SetSPISettings(9000000);
    library.clearLog();
    EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "ZVBL_Init_BL h=1001 addr=0 rate=9000000 duty=0\nZVBL_GET h=1001\n");
}

TEST_F(ConnectTest, AFailedStartEndsIt) {
    for (const LinkType type : {USART, I2C, CAN, SPI}) {
        open(type);
        library.script("ZVBL_Init_BL status=0x11");
        EXPECT_EQ(bootLoader().Connect(), CResult::SYS_CANT_INIT_BL);
        EXPECT_EQ(library.log().rfind("ZVBL_Init_BL", 0), 0u);
        EXPECT_EQ(library.log().find("ZVBL_GET "), std::string::npos);
        EXPECT_EQ(library.log().find("ZVBL_ZV32ISP_TOOL"), std::string::npos);
        library.script("");
    }
}

TEST_F(ConnectTest, AFailedCanSpeedEndsIt) {
    open(CAN);
    library.script("ZVBL_SetSpeed status=5");
    EXPECT_EQ(bootLoader().Connect(), CResult::COM_READ_FAIL);
    EXPECT_EQ(library.log(), "ZVBL_Init_BL h=1001 addr=0 rate=2 duty=0\nZVBL_SetSpeed h=1001 speed=2\n");
}

TEST_F(ConnectTest, TheCapabilitiesAreTheResult) {
    open(USBDFU);
    library.script("ZVBL_GET status=2");
    EXPECT_EQ(bootLoader().Connect(), CResult::UNKNOWN_ERROR);
    library.script("ZVBL_GET caps=all,-RESET_MCU_CMD");
    EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
    EXPECT_EQ(bootLoader().m_pCmds->RESET_MCU_CMD, 0);
    EXPECT_EQ(bootLoader().m_pCmds->REMAP_ENABLE_CMD, 1);
}

TEST_F(ConnectTest, ForgetsTheJumpToTheUserProgram) {
    open(USBDFU);
    bootLoader().m_bHasJumpToUserProgram = true;
    library.script("ZVBL_GET status=5");
    EXPECT_EQ(bootLoader().Connect(), CResult::COM_READ_FAIL);
    EXPECT_FALSE(bootLoader().m_bHasJumpToUserProgram);
}

TEST_F(ConnectTest, ASilentBootloaderNeedsAReconnect) {
    open(USART);
    EXPECT_FALSE(bootLoader().IsNeedReeonnect());
    library.script("ZVBL_GET_VER_ROPS status=5");
    EXPECT_TRUE(bootLoader().IsNeedReeonnect());
}

TEST_F(ConnectTest, WithoutItsLinkNoBoardIsSwitched) {
    CCom &link = open(USART);
    link.SetBootSwitch(AUTOMATIC);
    bootLoader().m_hCCOM = nullptr;
    EXPECT_EQ(bootLoader().Connect(), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "ZVBL_Init_BL h=1001 addr=0 rate=0 duty=0\nZVBL_ZV32ISP_TOOL h=1001\nZVBL_GET h=1001\n");
}
