#include "tests/operations/ProjectTest.h"

TEST_F(ProjectTest, ChecksSlibErasesThenChecksProtectionThenWrites) {
    connect(f413);
    parameters.m_bVerify = true;
    EXPECT_EQ(download({file({part(0x08000000, 4)})}), 0);
    EXPECT_EQ(library.log(), "ZVBL_GetSlibStatus_Ex h=1001\n"
                             "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n" // the erase's own check
                             "ZVBL_ERASE h=1001 selector=1 sector=0 size=2048\n"
                             "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n"
                             "ZVBL_DNLOAD h=1001 addr=08000000 len=4 data=5A5A5A5A optimise=0\n"
                             "ZVBL_VERIFY h=1001 addr=08000000 len=4 data=5A5A5A5A optimise=0\n");
}

TEST_F(ProjectTest, OnlyItsOwnTitlesReachTheListener) {
    connect(f413);
    parameters.m_bVerify = true;
    EXPECT_EQ(download({file({part(0x08000000, 2048)}), file({part(0x08000800, 1024)}, "S19")}), 0);
    EXPECT_EQ(events, (Lines{"INIT Download------(HEX)", "ACTION 0", "ACTION 50", "ACTION 100",
                             "INIT Download------(S19)", "ACTION 100", "ACTION 100", "DONE"}));
    EXPECT_EQ(lastInit.m_strFilePath, "/project/S19");
    EXPECT_EQ(lastInit.m_uiFileSize, 1024u);
    EXPECT_EQ(lastInit.m_emType, OP_DOWNLOAD);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 3u) << "the verify runs all the same";
    job().SetOperationInfoDelegate();
    EXPECT_EQ(job().m_obVerify->m_lpFunc, nullptr);
}

TEST_F(ProjectTest, TheEventsTellWhichFileAndHowMuchOfIt) {
    connect(f413);
    Lines files;
    std::vector<uint> bytes;
    onEvent = [&](InfoType type) {
        if (type == INFO_TYPE_INIT)
            files.push_back(lastInit.m_strFilePath + " " + std::to_string(lastInit.m_uiFileSize));
        else if (type == INFO_TYPE_ACTION)
            bytes.push_back(job().m_ActionInfo.m_uiFileStatus);
    };
    EXPECT_EQ(download({file({part(0x08000000, 1040)}), file({part(0x08000800, 16)}, "S19")}), 0);
    EXPECT_EQ(files, (Lines{"/project/HEX 1040", "/project/S19 16"}));
    EXPECT_EQ(bytes, (std::vector<uint>{0, 1024, 1040, 16, 16}));
}

TEST_F(ProjectTest, TheBlockFamiliesTakeTheSectorPath) {
    connect(f435);
    EXPECT_EQ(download({file({part(0x08001000, 16)})}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE", "ZVBL_BLOCK_ERASE"}), Lines{"ZVBL_ERASE h=1001 selector=1 sector=1 size=4096"});
}

TEST_F(ProjectTest, EraseModes) {
    connect(f413);
    parameters.m_enEraseMode = GLOBAL;
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines{"ZVBL_ERASE h=1001 selector=FFFE sector=null size=0"});
    parameters.m_enEraseMode = ERASEMODE_NONE;
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines());
}

TEST_F(ProjectTest, AProtectedSectorIsFoundAfterAnEraseOfOthers) {
    connect(f413);
    parameters.m_enEraseMode = ERASEMODE_NONE;
    library.script("TARGET_GetUserSystemData data=A5FFFFFFFEFFFFFF");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::SYS_ERASEPROGRAM_PROTECTION);
    EXPECT_EQ(events, (Lines{"INIT Download------(HEX)", "ACTION 0", "ABEND"})) << "in the first step, not before";
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}), Lines());
    EXPECT_FALSE(job().m_hasGetEraseProgramProtectStatus);
}

TEST_F(ProjectTest, TheCheckIsMadeOncePerRun) {
    connect(f413);
    parameters.m_enEraseMode = ERASEMODE_NONE;
    bool seen = false;
    onEvent = [&](InfoType type) {
        if (type == INFO_TYPE_ACTION && events.back() == "ACTION 100")
            seen = job().m_hasGetEraseProgramProtectStatus;
    };
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), 0);
    EXPECT_TRUE(seen);
    EXPECT_FALSE(job().m_hasGetEraseProgramProtectStatus);
    EXPECT_EQ(calls({"TARGET_GetUserSystemData"}).size(), 1u);
}

TEST_F(ProjectTest, TheFirstFamiliesDoNotRestart) {
    connect(f403_1);
    parameters.m_bVerify = true;
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines());
}

TEST_F(ProjectTest, OptimiseReachesTheLibrary) {
    connect(f413);
    parameters.m_bOptimize = parameters.m_bVerify = true;
    EXPECT_EQ(download({file({part(0x08000000, 4)})}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"})[0].back(), '1');
    EXPECT_EQ(calls({"ZVBL_VERIFY"})[0].back(), '1');
}

TEST_F(ProjectTest, TheRecordStartsFromItsDefaults) {
    const DLPROJECTParam fresh;
    EXPECT_EQ(fresh.m_enEraseMode, NECESSARY);
    EXPECT_EQ(fresh.m_bFAPLevel, 1);
    EXPECT_EQ(fresh.m_bFlashType, 144);
    EXPECT_EQ(fresh.m_UserSystemDataArray, nullptr);
    EXPECT_FALSE(fresh.m_bOptimize || fresh.m_bJump || fresh.m_bVerify || fresh.m_bFAP || fresh.m_bRDUP ||
                 fresh.m_bWriteSN || fresh.m_bEnBank3 || fresh.m_bRemapFlag || fresh.m_bNeedRemap ||
                 fresh.m_bEnableSlib || fresh.m_bDisableSlib);
}
