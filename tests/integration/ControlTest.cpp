// The bootloader control itself: identity, resets, option bytes, protection, SPIM.

#include "link/ZVBLLIB.h"
#include "tests/integration/JobsTest.h"
#include "usersystemdata/CUserSystemData.h"

class ControlTest : public JobsTest {};

TEST_F(ControlTest, Identity) {
    connect("ZV32F457_1024K");
    Bytes uid(12, 0);
    EXPECT_EQ(control->GetUID(uid.data()), CResult::SUCCESS);
    EXPECT_EQ(uid, read(0x1FFFF7E8, 12));
    EXPECT_EQ(control->GetUID(nullptr), 33);
    int kilobytes = 0;
    EXPECT_EQ(control->GetFlashSize(control->m_ObDevice->m_UiFlashSizeAdd, kilobytes), CResult::SUCCESS);
    EXPECT_EQ(kilobytes, 1024);
    EXPECT_EQ(control->GetFlashSize(0x1FFFE000, kilobytes), CResult::SYS_CMD_FAIL) << "nothing lies there";
    EXPECT_EQ(kilobytes, 1024);
}

TEST_F(ControlTest, ResetByCommand) {
    connect("ZV32F403A_1024K");
    EXPECT_EQ(ZVBL_EnableBank3(control->m_handle, 0x90, 1 << 20, 0), 0);
    EXPECT_EQ(control->ResetMcu(), CResult::SUCCESS);
    EXPECT_FALSE(control->IsNeedReeonnect());
    BYTE bytes[4] = {};
    EXPECT_NE(ZVBL_UPLOAD(control->m_handle, spimBase, bytes, 4), 0) << "SPIM is off after a reset";
}

TEST_F(ControlTest, TheFirst403RestartsByAJump) {
    connect("ZV32F403_1_1024K");
    EXPECT_EQ(ZVBL_EnableBank3(control->m_handle, 0x90, 1 << 20, 0), 0);
    EXPECT_EQ(control->ResetMcu403B(), CResult::SUCCESS);
    EXPECT_FALSE(control->IsNeedReeonnect());
    EXPECT_FALSE(control->m_bHasJumpToUserProgram);
    BYTE bytes[4] = {};
    EXPECT_NE(ZVBL_UPLOAD(control->m_handle, spimBase, bytes, 4), 0);
}

TEST_F(ControlTest, AnotherChipRunsAwayByThatJump) {
    connect("ZV32F403A_1024K");
    com->SetComTimeOut(200);
    EXPECT_NE(control->ResetMcu403B(), CResult::SUCCESS);
    EXPECT_TRUE(control->IsNeedReeonnect());
    chip->pressReset();
    com->SetComTimeOut(2000);
    EXPECT_EQ(control->Connect(), CResult::SUCCESS);
}

TEST_F(ControlTest, RemovingAccessProtectionErasesAndOpens) {
    connect("ZV32F403A_1024K");
    write(flashBase, program(64));
    control->AccessProtect(1);
    EXPECT_EQ(run(), CResult::SUCCESS);
    EXPECT_TRUE(isProtected());
    EXPECT_EQ(control->ReadoutUnProtectNoThread(), CResult::SUCCESS);
    EXPECT_FALSE(isProtected());
    EXPECT_EQ(read(flashBase, 64), Bytes(64, 0xFF));
}

TEST_F(ControlTest, NothingRemovesTheHighLevel) {
    connect("ZV32F425_64K");
    control->AccessProtect(2);
    EXPECT_EQ(run(), CResult::SUCCESS);
    EXPECT_EQ(control->ReadoutUnProtectNoThread(), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_TRUE(isProtected());
}

TEST_F(ControlTest, UserSystemDataExceptAccessProtection) {
    for (const char *name : {"ZV32F403A_1024K", "ZV32F421_64K", "ZV32F437_1024K"}) {
        connect(name);
        ASSERT_EQ(control->GetUserSystemData(), CResult::SUCCESS);
        CUserSystemData &data = *control->m_ObUserSystemData;
        BYTE *element = nullptr;
        const quint32 length = data.GetElementData(element);
        const std::unique_ptr<BYTE[]> owner(element);
        // The first item is the access protection byte, the second the switches; each with its complement.
        Bytes wanted(element, element + length);
        wanted[0] = 0x00;
        wanted[1] = 0xFF;
        wanted[2] = 0xFE;
        wanted[3] = 0x01;
        EXPECT_EQ(control->LoadUserSystemDataToDeviceExceptFAP(wanted.data(), length), CResult::SUCCESS) << name;
        EXPECT_FALSE(isProtected()) << name;
        const Bytes after = compactUserData();
        EXPECT_EQ(after[0], 0xA5) << name;
        EXPECT_EQ(after[1], 0xFE) << name;

        EXPECT_EQ(control->LoadUserSystemDataToDevice(wanted.data(), length), CResult::SUCCESS) << name;
        EXPECT_TRUE(isProtected()) << name << ": the other one takes that byte as well";
    }
}

TEST_F(ControlTest, TheDirectWayToSpimCountsInMegabytes) {
    connect("ZV32F403A_1024K");
    EnBank3Param parameters;
    parameters.m_bRemapFlag = true;
    parameters.m_bFlashType = 0x91;
    parameters.m_uiFlashSize = 2;
    EXPECT_EQ(control->EnableSPIM(parameters), 0);
    const Bytes last = program(4);
    write(spimBase + (2 << 20) - 4, last);
    EXPECT_EQ(read(spimBase + (2 << 20) - 4, 4), last);
    BYTE behind[4] = {};
    EXPECT_NE(ZVBL_UPLOAD(control->m_handle, spimBase + (2 << 20), behind, 4), 0);
    parameters.m_bFlashType = 0x77;
    EXPECT_EQ(control->EnableSPIM(parameters), 0x14) << "the bare status byte";
}
