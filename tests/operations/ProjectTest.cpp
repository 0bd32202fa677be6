#include <cstring>

#include "tests/operations/OperationsTest.h"

namespace {

HEXFILEPARTINFO part(uint address, uint size, BYTE fill = 0x5A) {
    HEXFILEPARTINFO one = {};
    one.PartStartAddress = address;
    one.PartEndAddress = address + size - 1;
    one.PartSize = size;
    std::memset(one.pData, fill, sizeof one.pData);
    return one;
}

SFileInfo file(const QList<HEXFILEPARTINFO> &parts, const std::string &type = "HEX", uint start = 0) {
    SFileInfo one = {};
    one.FilePath = "/project/" + type;
    one.LoadFileType = type;
    one.StartAddress = start;
    one.partInfo = parts;
    for (const HEXFILEPARTINFO &each : parts)
        one.FileSize += static_cast<int>(each.PartSize);
    return one;
}

using List = QList<int>;

} // namespace

class ProjectTest : public OperationsTest {
protected:
    int download(const QList<SFileInfo> &files) {
        parameters.m_DownFileInfo = files;
        events.clear();
        abendCode = 0;
        library.clearLog();
        bootLoader().DownloadToDeviceProject(parameters);
        return run();
    }
    CDownloadProject &job() { return static_cast<CDownloadProject &>(*bootLoader().m_ObOperation); }
    List sectors(const QList<HEXFILEPARTINFO> &parts) {
        CDownloadProject project(&bootLoader());
        DLPROJECTParam record;
        record.m_DownFileInfo = {file(parts)};
        project.SetParameters(&record);
        return project.GetNecessarySectorIndex();
    }
    static std::string address(const std::string &call) { return call.substr(call.find("addr=") + 5, 8); }

    DLPROJECTParam parameters;
};

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

TEST_F(ProjectTest, AVerifyReportsAsADownloadDoes) {
    connect(f413);
    CVerifyProject verify(&bootLoader());
    verify.SetSubOperation(true);
    verify.SetVerifyFile(file({part(0x08000000, 2048), part(0x08001000, 2048)}));
    listen(verify);
    EXPECT_EQ(verify.Start(), 0);
    EXPECT_EQ(events, (Lines{"INIT Verify------(HEX)", "ACTION 0", "ACTION 25", "ACTION 50", "ACTION 75", "ACTION 100",
                             "ACTION 100"}));
    EXPECT_EQ(lastInit.m_strFilePath, "/project/HEX");
    EXPECT_EQ(lastInit.m_uiFileSize, 4096u);
    EXPECT_EQ(lastInit.m_emType, OP_VERIFY);
    EXPECT_EQ(verify.m_ActionInfo.m_uiFileStatus, 4096u);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 4u);
}

TEST_F(ProjectTest, Chunks) {
    connect(f413);
    const struct {
        uint size;
        Lines lengths;
    } cases[] = {{1, {"1"}}, {1024, {"1024"}}, {1025, {"1024", "1"}}, {3000, {"1024", "1024", "952"}}};
    for (const auto &one : cases) {
        EXPECT_EQ(download({file({part(0x08000010, one.size)})}), 0);
        const Lines sent = calls({"ZVBL_DNLOAD"});
        ASSERT_EQ(sent.size(), one.lengths.size()) << one.size;
        for (std::size_t i = 0; i < sent.size(); ++i) {
            EXPECT_NE(sent[i].find(" len=" + one.lengths[i] + " "), std::string::npos) << sent[i];
            const QString expected = QString("%1").arg(0x08000010 + 1024 * i, 8, 16, QChar('0'));
            EXPECT_EQ(address(sent[i]), expected.toUpper().toStdString());
        }
    }
    EXPECT_EQ(download({file({part(0x08000000, 65536)})}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 64u);
}

TEST_F(ProjectTest, TheChunksCarryTheirBytes) {
    connect(f413);
    HEXFILEPARTINFO one = part(0x08000000, 1028);
    for (BYTE i = 0; i < 4; ++i)
        one.pData[1024 + i] = i;
    EXPECT_EQ(download({file({one})}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"})[1], "ZVBL_DNLOAD h=1001 addr=08000400 len=4 data=00010203 optimise=0");
}

TEST_F(ProjectTest, PartsToSectors) {
    connect(f413);
    EXPECT_EQ(sectors({part(0x08000000 + 2048 - 16, 32)}), (List{0, 1})) << "across a border";
    EXPECT_EQ(sectors({part(0x08000800, 2048)}), List{1});
    EXPECT_EQ(sectors({part(0x08000800, 2049)}), (List{1, 2}));
    EXPECT_EQ(sectors({part(0x08400000, 16)}), List{32768});
    EXPECT_EQ(sectors({part(0x08401000, 4097)}), (List{32769, 32770}));
    EXPECT_EQ(sectors({part(0x1FFFFFF0, 16)}).size(), 1) << "the last below RAM";
    EXPECT_EQ(sectors({part(0x20000000, 16)}), List());
    EXPECT_EQ(sectors({part(0x08000000, 16), part(0x08000100, 16), part(0x08000800, 4)}), (List{0, 0, 1}))
        << "a shared sector stands twice";
}

TEST_F(ProjectTest, AddressToSector) {
    connect(f413);
    CDownloadProject project(&bootLoader());
    EXPECT_EQ(project.FlashGetSectorIndex(0x08000800, 0), 1);
    EXPECT_EQ(project.FlashGetSectorIndex(0x07FFFFFF, 0), -1);
    EXPECT_EQ(project.FlashGetSectorIndex(0x08401000, 999), 32769);
}

TEST_F(ProjectTest, KeysGoToTheChipBeforeAnEncryptedBankIsEnabled) {
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

TEST_F(ProjectTest, ASharedSectorIsErasedTwice) {
    connect(f413);
    EXPECT_EQ(download({file({part(0x08000000, 16), part(0x08000100, 16)})}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines(2, "ZVBL_ERASE h=1001 selector=1 sector=0 size=2048"));
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

TEST_F(ProjectTest, AProtectedSectorIsFoundBehindAnEraseOfOthers) {
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

TEST_F(ProjectTest, NothingToWrite) {
    connect(f413);
    EXPECT_EQ(download({file({part(0x20000000, 16)})}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(calls({"ZVBL_ERASE", "ZVBL_DNLOAD"}), Lines());
    EXPECT_EQ(download({}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(events, Lines{"ABEND"});
}

TEST_F(ProjectTest, APartThatClaimsMoreThanItHoldsIsRefused) {
    connect(f413);
    EXPECT_EQ(download({file({part(0x08000000, 65537)})}), CResult::PROGRAM_INPUT_PARAMS_ERROR);
    EXPECT_EQ(library.log(), "");
}

TEST_F(ProjectTest, AnImageInTheSlibAreaIsRefused) {
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

TEST_F(ProjectTest, TheStepsInFrontInTheirOrder) {
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

TEST_F(ProjectTest, AFailedStepInFrontEndsThePreparation) {
    connect(f413);
    parameters.m_bRDUP = true;
    library.script("ZVBL_ACCESS_PERM_UNPROTECT status=0x13");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(events, Lines{"ABEND"});
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines());
}

TEST_F(ProjectTest, NoResetFollowsAFailure) {
    connect(f413);
    parameters.m_bEnableSlib = true;
    parameters.m_uiEnablePassword = 8;
    parameters.m_usStartSector = parameters.m_usEndSector = 100;
    parameters.m_usStartDataSector = 0xFFFF;
    library.script("ZVBL_GetSlibStatus_Ex enabled=1 start=100 datastart=65535 end=100\nZVBL_DNLOAD status=5");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::COM_READ_FAIL);
    EXPECT_EQ(calls({"ZVBL_ResetMCU"}), Lines());
}

TEST_F(ProjectTest, TheFirstFamiliesDoNotRestart) {
    connect(f403_1);
    parameters.m_bVerify = true;
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines());
}

TEST_F(ProjectTest, JumpsToTheFilesOwnStartAddress) {
    connect(f413);
    parameters.m_bJump = true;
    EXPECT_EQ(download({file({part(0x08000000, 16)}, "HEX", 0x08000188)}), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines{"ZVBL_GO h=1001 addr=08000188"});
}

TEST_F(ProjectTest, VerifyAddsTheStartAddressOfABinaryFileAndDownloadDoesNot) {
    connect(f413);
    parameters.m_bVerify = true;
    const struct {
        const char *type;
        const char *verified;
    } cases[] = {{"BIN", "08001004"},   {"x.BIN", "08001004"}, {"bIN", "08001004"}, {"bin", "08000004"},
                 {"x.bin", "08000004"}, {"HEX", "08000004"},   {"IN", "08000004"}};
    for (const auto &one : cases) {
        EXPECT_EQ(download({file({part(0x08000004, 4)}, one.type, 0x1000)}), 0) << one.type;
        EXPECT_EQ(address(calls({"ZVBL_DNLOAD"})[0]), "08000004") << one.type;
        EXPECT_EQ(address(calls({"ZVBL_VERIFY"})[0]), one.verified) << one.type;
    }
    EXPECT_EQ(download({file({part(0x08000004, 4), part(0x08000014, 4)}, "BiN", 0x1000)}), 0);
    EXPECT_EQ(address(calls({"ZVBL_VERIFY"})[0]), "08000004") << "part 0 folds character 0";
    EXPECT_EQ(address(calls({"ZVBL_VERIFY"})[1]), "08001014") << "part 1 folds character 1";
}

TEST_F(ProjectTest, VerifyFailures) {
    connect(f413);
    parameters.m_bVerify = true;
    library.script("ZVBL_VERIFY status=19");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING);
    library.script("ZVBL_VERIFY status=5");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::COM_READ_FAIL);
    CVerifyProject empty(&bootLoader());
    EXPECT_EQ(empty.Action(), CResult::UNKNOWN_ERROR);
}

TEST_F(ProjectTest, OptimiseReachesTheLibrary) {
    connect(f413);
    parameters.m_bOptimize = parameters.m_bVerify = true;
    EXPECT_EQ(download({file({part(0x08000000, 4)})}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"})[0].back(), '1');
    EXPECT_EQ(calls({"ZVBL_VERIFY"})[0].back(), '1');
}

TEST_F(ProjectTest, TheFinishingSteps) {
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

TEST_F(ProjectTest, WithoutAStepBeforeItACancelDoesNotKeepTheEraseAway) {
    connect(f413);
    parameters.m_DownFileInfo = {file({part(0x08000000, 16)})};
    bootLoader().DownloadToDeviceProject(parameters);
    const std::string log = runCancelledAtFirstCall();
    EXPECT_NE(log.find("ZVBL_ERASE h=1001 selector=1 sector=0"), std::string::npos) << log;
    EXPECT_EQ(log.find("ZVBL_DNLOAD"), std::string::npos) << log;
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(ProjectTest, ACancelAfterSpimWasEnabledKeepsTheEraseAway) {
    connect(f403a);
    parameters.m_bEnBank3 = true;
    parameters.m_DownFileInfo = {file({part(0x08000000, 16)})};
    bootLoader().DownloadToDeviceProject(parameters);
    const std::string log = runCancelledAtFirstCall();
    EXPECT_EQ(log.find("ZVBL_ERASE"), std::string::npos) << log;
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(ProjectTest, AFinishWithoutStepsIsNotCancelled) {
    connect(f413);
    CDownloadProject project(&bootLoader());
    parameters.m_DownFileInfo = {file({part(0x08000000, 16)}, "HEX", 0x08000188)};
    parameters.m_bJump = true;
    project.SetParameters(&parameters);
    project.CallCommand(COMMAND_CANCEL);
    EXPECT_EQ(project.ActionDone(), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines{"ZVBL_GO h=1001 addr=08000188"});
}

TEST_F(ProjectTest, CancelBetweenChunks) {
    connect(f413);
    onEvent = [&](InfoType) {
        if (calls({"ZVBL_DNLOAD"}).size() == 2)
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({file({part(0x08000000, 8192)})}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 2u);
    EXPECT_EQ(events.back(), "CANCEL");
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
