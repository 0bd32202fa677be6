#include <QList>

#include "files/CFiles.h"
#include "tests/operations/OperationsTest.h"

namespace {

const std::string threeElements = "element address=08000000 fill=11\nelement address=08000800 fill=22\n"
                                  "element address=08001000 fill=33";
const std::string oneSmall = "element address=08000000 length=4 fill=AB";

std::string eraseOf(int sector, int size = 2048) {
    return "ZVBL_ERASE h=1001 selector=1 sector=" + std::to_string(sector) + " size=" + std::to_string(size);
}

} // namespace

class DownloadTest : public OperationsTest {
protected:
    int download(const Lines &names) {
        parameters.m_strDownPathFile.clear();
        for (const std::string &name : names)
            parameters.m_strDownPathFile.append(path(name));
        return downloadPaths();
    }
    int downloadPaths() {
        abendCode = 0;
        events.clear();
        library.clearLog();
        bootLoader().DownloadToDevice(parameters);
        return run();
    }
    CDownload &job() { return static_cast<CDownload &>(*bootLoader().m_ObOperation); }
    // A compact block's element image, all pairs of value and complement.
    BYTE *userSystemData(BYTE protection) {
        BYTE *bytes = new BYTE[48];
        for (int i = 0; i < 48; i += 2) {
            bytes[i] = i == 0 ? protection : 0xFF;
            bytes[i + 1] = static_cast<BYTE>(~bytes[i]);
        }
        return bytes;
    }

    DownloadParam parameters;
};

TEST_F(DownloadTest, ErasesWritesVerifies) {
    connect(f413);
    image(threeElements);
    parameters.m_bVerify = true;
    eventsInLog = true;
    EXPECT_EQ(download({"a.hex"}), 0);
    const Lines expected{"TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24", // the download's check
                         "event INIT Erase",
                         "event ACTION 0",
                         "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24", // the erase's check
                         eraseOf(0),
                         "event ACTION 33",
                         eraseOf(1),
                         "event ACTION 66",
                         eraseOf(2),
                         "event ACTION 100",
                         "event ACTION 100",
                         "event INIT Download------(a.hex)",
                         "event ACTION 0"};
    Lines log = calls({"event", "ZVBL_ERASE", "TARGET_GetUserSystemData"});
    log.resize(expected.size());
    EXPECT_EQ(log, expected);
    EXPECT_EQ(Lines(events.begin() + 6, events.end()),
              (Lines{"INIT Download------(a.hex)", "ACTION 0", "ACTION 33", "ACTION 66", "ACTION 100",
                     "INIT Verify------(a.hex)", "ACTION 0", "ACTION 33", "ACTION 66", "ACTION 100", "ACTION 100",
                     "ACTION 100", "DONE"}));
    EXPECT_EQ(lastInit.m_uiFileSize, 6144u);
    EXPECT_EQ(lastInit.m_strFilePath, path("a.hex"));
    EXPECT_EQ(lastInit.m_emType, OP_VERIFY);
}

TEST_F(DownloadTest, EachElementIsOneCall) {
    connect(f413);
    image("element address=08000000 length=4 fill=AB\nelement address=08000010 length=3000 fill=00");
    EXPECT_EQ(download({"a.hex"}), 0);
    const Lines sent = calls({"ZVBL_DNLOAD"});
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0], "ZVBL_DNLOAD h=1001 addr=08000000 len=4 data=ABABABAB optimise=0");
    EXPECT_EQ(sent[1].substr(0, 43), "ZVBL_DNLOAD h=1001 addr=08000010 len=3000 d");
    EXPECT_EQ(calls({"ZVBL_VERIFY"}), Lines()) << "nothing is verified unasked";
}

TEST_F(DownloadTest, BinaryLandsAtItsStartAddress) {
    connect(f413);
    image(oneSmall);
    parameters.m_uiStartAddress = {0x08001000};
    EXPECT_EQ(download({"a.bin"}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE", "ZVBL_DNLOAD"}),
              (Lines{eraseOf(2), "ZVBL_DNLOAD h=1001 addr=08001000 len=4 data=ABABABAB optimise=0"}));
}

TEST_F(DownloadTest, OptimiseReachesBothLibraries) {
    connect(f413);
    image(oneSmall);
    setenv("FILES_DOUBLE_LOG", path("files.log").c_str(), 1);
    parameters.m_bOptimize = true;
    parameters.m_bVerify = true;
    EXPECT_EQ(download({"a.hex"}), 0);
    unsetenv("FILES_DOUBLE_LOG");
    std::stringstream log;
    log << std::ifstream(path("files.log")).rdbuf();
    EXPECT_NE(log.str().find("operation=2 optimise=1"), std::string::npos) << log.str();
    EXPECT_EQ(calls({"ZVBL_DNLOAD", "ZVBL_VERIFY"}),
              (Lines{"ZVBL_DNLOAD h=1001 addr=08000000 len=4 data=ABABABAB optimise=1",
                     "ZVBL_VERIFY h=1001 addr=08000000 len=4 data=ABABABAB optimise=1"}));
}

TEST_F(DownloadTest, WithoutAnEraseTheCheckIsMadeAllTheSame) {
    connect(f413);
    image(oneSmall);
    parameters.m_enEraseMode = ERASEMODE_NONE;
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(library.log(), "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n"
                             "ZVBL_DNLOAD h=1001 addr=08000000 len=4 data=ABABABAB optimise=0\n");
    library.script("TARGET_GetUserSystemData data=A5FFFFFFFEFFFFFF");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_ERASEPROGRAM_PROTECTION);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}), Lines());
    EXPECT_EQ(events, Lines{"ABEND"});
    library.script("TARGET_GetUserSystemData status=5");
    EXPECT_EQ(download({"a.hex"}), CResult::COM_READ_FAIL) << "a check that cannot be made";
}

TEST_F(DownloadTest, WithoutAMapNothingIsTouchedInAnyEraseMode) {
    connect(f413);
    image(oneSmall);
    CMapping *map = bootLoader().m_ObDevice->m_CMapping;
    for (EraseMode mode : {ERASEMODE_NONE, NECESSARY, GLOBAL}) {
        parameters.m_enEraseMode = mode;
        bootLoader().m_ObDevice->m_CMapping = nullptr;
        EXPECT_EQ(download({"a.hex"}), CResult::UNKNOWN_ERROR);
        bootLoader().m_ObDevice->m_CMapping = map;
        EXPECT_EQ(calls({"ZVBL_ERASE", "ZVBL_DNLOAD"}), Lines());
    }
}

TEST_F(DownloadTest, GlobalErasesTheWholeDevice) {
    connect(f413);
    image(oneSmall);
    parameters.m_enEraseMode = GLOBAL;
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE", "SetTimeOut"}),
              (Lines{"SetTimeOut h=1001 ms=100000", "ZVBL_ERASE h=1001 selector=FFFE sector=null size=0",
                     "SetTimeOut h=1001 ms=5000"}));
}

TEST_F(DownloadTest, UnsortedImagesEraseUnsorted) {
    connect(f413);
    image("element address=08008000 length=4\nelement address=08000000 length=4");
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE"}), (Lines{eraseOf(16), eraseOf(0)}));
}

TEST_F(DownloadTest, TheBlockFamiliesNeedAnEraseBefore) {
    connect(f435);
    image("element address=08000000 length=4096");
    EXPECT_EQ(download({"a.hex"}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(calls({"ZVBL_ERASE", "ZVBL_BLOCK_ERASE", "ZVBL_DNLOAD"}), Lines());
    EXPECT_EQ(events, Lines{"ABEND"});
    parameters.m_enEraseMode = ERASEMODE_NONE;
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 1u);
}

TEST_F(DownloadTest, AFailedEraseIsTheDownloads) {
    connect(f413);
    image(oneSmall);
    library.script("ZVBL_ERASE status=0x14");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(events, (Lines{"INIT Erase", "ACTION 0", "ABEND"}));
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}), Lines());
}

TEST_F(DownloadTest, AFailedWriteEndsTheDownload) {
    connect(f413);
    image(threeElements);
    parameters.m_bVerify = true;
    library.script("ZVBL_DNLOAD status=4 nth=2");
    EXPECT_EQ(download({"a.hex", "b.hex"}), CResult::COM_SEND_FAIL);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 2u);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}), Lines());
    EXPECT_EQ(events.back(), "ABEND");
    EXPECT_EQ(std::count(events.begin(), events.end(), "ABEND"), 1);
}

TEST_F(DownloadTest, AMismatchEndsTheDownload) {
    connect(f413);
    image(oneSmall);
    parameters.m_bVerify = true;
    library.script("ZVBL_VERIFY status=19");
    EXPECT_EQ(download({"a.hex", "b.hex"}), CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 1u) << "the second file is not written";
}

TEST_F(DownloadTest, SeveralFilesOneAfterTheOther) {
    connect(f413);
    image(oneSmall);
    parameters.m_bVerify = true;
    EXPECT_EQ(download({"a.hex", "b.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE", "ZVBL_DNLOAD", "ZVBL_VERIFY"}),
              (Lines{eraseOf(0), "ZVBL_DNLOAD h=1001 addr=08000000 len=4 data=ABABABAB optimise=0",
                     "ZVBL_VERIFY h=1001 addr=08000000 len=4 data=ABABABAB optimise=0",
                     "ZVBL_DNLOAD h=1001 addr=08000000 len=4 data=ABABABAB optimise=0",
                     "ZVBL_VERIFY h=1001 addr=08000000 len=4 data=ABABABAB optimise=0"}));
    EXPECT_EQ(Lines(events.begin() + 4, events.end()),
              (Lines{"INIT Download------(a.hex)", "ACTION 0", "ACTION 100", "INIT Verify------(a.hex)", "ACTION 0",
                     "ACTION 100", "ACTION 100", "INIT Download------(b.hex)", "ACTION 100", "INIT Verify------(b.hex)",
                     "ACTION 0", "ACTION 100", "ACTION 100", "ACTION 100", "DONE"}));
}

TEST_F(DownloadTest, TheEventsTellWhichFileAndHowMuchOfIt) {
    connect(f413);
    image(threeElements);
    std::vector<std::pair<std::string, uint>> files;
    std::vector<uint> bytes;
    onEvent = [&](InfoType type) {
        auto &job = static_cast<CDownload &>(*bootLoader().m_ObOperation);
        if (type == INFO_TYPE_INIT && lastInit.m_emType == OP_DOWNLOAD) {
            files.emplace_back(lastInit.m_strFilePath, lastInit.m_uiFileSize);
            job.m_lsProgramFile.at(1)->m_UiFileSize = 12288;
        } else if (type == INFO_TYPE_ACTION && !files.empty()) {
            bytes.push_back(job.m_ActionInfo.m_uiFileStatus);
        }
    };
    EXPECT_EQ(download({"a.hex", "b.hex"}), 0);
    EXPECT_EQ(files, (std::vector<std::pair<std::string, uint>>{{path("a.hex"), 6144}, {path("b.hex"), 12288}}));
    EXPECT_EQ(bytes, (std::vector<uint>{0, 2048, 4096, 6144, 2048, 4096, 6144, 6144}));
    EXPECT_EQ(events[events.size() - 2], "ACTION 50") << "percent goes by the size of the file";
}

TEST_F(DownloadTest, TheSecondOfEachPairOfFamiliesDoesAsTheFirst) {
    connect(f435).m_ObDevice->m_StrSerial = "0E";
    image("element address=08000000 length=4096");
    EXPECT_EQ(download({"a.hex"}), CResult::UNKNOWN_ERROR) << "ZV32F437 needs an erase before";
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines());
    connect(f403_1).m_ObDevice->m_StrSerial = "02";
    image(oneSmall);
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_GO"}).size(), 1u) << "ZV32F403_2 restarts";
}

TEST_F(DownloadTest, TheFirstFamiliesRestartInFrontOfTheVerify) {
    connect(f403_1);
    image(oneSmall);
    parameters.m_bVerify = true;
    eventsInLog = true;
    EXPECT_EQ(download({"a.hex"}), 0);
    const std::string log = library.log();
    const auto restart = log.find("ZVBL_GO h=1001 addr=080FFFFC\n" + reconnected);
    ASSERT_NE(restart, std::string::npos) << log;
    EXPECT_GT(restart, log.find("ZVBL_DNLOAD"));
    EXPECT_LT(restart, log.find("event INIT Verify"));
    EXPECT_LT(log.find("event INIT Verify"), log.find("ZVBL_VERIFY"));
}

TEST_F(DownloadTest, AFailedRestartIsReturnedAtOnce) {
    connect(f403_1);
    image(oneSmall);
    parameters.m_bVerify = true;
    parameters.m_bEnableSlib = true;
    parameters.m_uiPassword = 1;
    parameters.m_usStartDataSector = 0xFFFF;
    library.script("ZVBL_GO status=5\nZVBL_GetSlibStatus_Ex enabled=1 datastart=65535");
    EXPECT_EQ(download({"a.hex"}), CResult::COM_READ_FAIL);
    EXPECT_EQ(calls({"ZVBL_VERIFY", "ZVBL_ResetMCU"}), Lines());
}

TEST_F(DownloadTest, SpimIsEnabledBeforeTheEraseAndAgainBehindTheRestart) {
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

TEST_F(DownloadTest, AFailedSecondEnablingIsReturnedAtOnce) {
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

TEST_F(DownloadTest, KeysThatCannotBeWrittenEnableNothing) {
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

TEST_F(DownloadTest, AFailedEnablingErasesNothing) {
    connect(f413);
    image(oneSmall);
    parameters.m_bEnBank3 = true;
    library.script("ZVBL_EnableBank3 status=0x14");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(calls({"ZVBL_ERASE"}), Lines());
}

TEST_F(DownloadTest, KeysGoToTheChipBeforeAnEncryptedBankIsEnabled) {
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

TEST_F(DownloadTest, WithoutAnEncryptedRangeTheKeysCanWait) {
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

TEST_F(DownloadTest, AFileThatOpensLateIsTaken) {
    connect(f413);
    std::string script = oneSmall;
    for (int attempt = 1; attempt < 10; ++attempt)
        script += "\nFILES_ImageFromFile status=3 nth=" + std::to_string(attempt);
    image(script);
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"sleep"}), Lines(9, "sleep 1000"));
}

TEST_F(DownloadTest, TenFailedAttemptsAreTheEnd) {
    connect(f413);
    image("FILES_ImageFromFile status=5");
    EXPECT_EQ(download({"a.hex"}), CResult::FILES_BADFORMAT);
    EXPECT_EQ(library.log(), []() {
        std::string sleeps;
        for (int i = 0; i < 10; ++i)
            sleeps += "sleep 1000\n";
        return sleeps;
    }());
    EXPECT_EQ(events, Lines{"ABEND"});
}

TEST_F(DownloadTest, AnEmptyImageIsRefused) {
    connect(f413);
    image("no-elements");
    EXPECT_EQ(download({"a.hex"}), CResult::FILES_EMPTY);
    EXPECT_EQ(library.log(), "");
}

TEST_F(DownloadTest, AFileIsTakenOnceItIsOpenAndHasElements) {
    connect(f413);
    for (const char *script : {"no-elements", "FILES_ImageFromFile status=5"}) {
        image(script);
        EXPECT_NE(download({"a.hex"}), 0);
        EXPECT_TRUE(job().m_lsProgramFile.isEmpty()) << script;
    }
    std::string secondFails = oneSmall;
    for (int attempt = 2; attempt <= 11; ++attempt)
        secondFails += "\nFILES_ImageFromFile status=5 nth=" + std::to_string(attempt);
    image(secondFails);
    EXPECT_EQ(download({"a.hex", "b.hex"}), CResult::FILES_BADFORMAT);
    ASSERT_EQ(job().m_lsProgramFile.size(), 1);
    EXPECT_EQ(job().m_lsProgramFile.first()->m_StrPath, path("a.hex"));
}

TEST_F(DownloadTest, AJobDoesNotDeleteTheFilesItWasLent) {
    connect(f413);
    image(oneSmall);
    CProgramFile file;
    EXPECT_EQ(file.Open(path("a.hex"), bootLoader().m_ObDevice), 0);
    {
        CDownload lent(&bootLoader());
        lent.SetDownLoadFile({&file});
    }
    EXPECT_EQ(file.m_StrPath, path("a.hex"));
    EXPECT_EQ(file.GetElementCount(), 1);
}

// The sectors that an erase goes by stand in one section of a map, those that an image is cut by in all of it.
TEST_F(DownloadTest, AMapThatDisagreesWithItselfEndsTheDownloadBeforeTheErase) {
    connect(f413);
    image(oneSmall);
    for (const EraseMode mode : {ERASEMODE_NONE, NECESSARY, GLOBAL}) {
        parameters.m_enEraseMode = mode;
        bootLoader().m_ObDevice->m_ISectorSize = 1024;
        EXPECT_EQ(download({"a.hex"}), CResult::PROGRAM_INPUT_PARAMS_ERROR);
        EXPECT_EQ(library.log(), "");
        bootLoader().m_ObDevice->m_ISectorSize = 2048;
        PMAPPING table = bootLoader().m_ObDevice->m_CMapping->GetIpMapping();
        const DWORD sectors = table->NbSectors;
        table->NbSectors = 0;
        EXPECT_EQ(download({"a.hex"}), CResult::PROGRAM_INPUT_PARAMS_ERROR) << "a table without sectors";
        EXPECT_EQ(library.log(), "");
        table->NbSectors = sectors;
        EXPECT_EQ(download({"a.hex"}), 0);
    }
}

TEST_F(DownloadTest, AFileOfNoKnownTypeIsRefused) {
    connect(f413);
    image(oneSmall);
    EXPECT_EQ(download({"a.txt"}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(library.log(), "");
}

TEST_F(DownloadTest, NoPathsAtAll) {
    connect(f413);
    parameters.m_strDownPathFile.clear();
    EXPECT_EQ(downloadPaths(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(events, Lines{"ABEND"});
}

TEST_F(DownloadTest, AFirstPathWithoutSlashDoesNothingAndHasNoEndEvent) {
    connect(f413);
    parameters.m_strDownPathFile = {"a.hex"};
    EXPECT_EQ(downloadPaths(), 0);
    EXPECT_EQ(events, (Lines{"INIT ", "ACTION 0"}));
    EXPECT_EQ(library.log(), "");
}

TEST_F(DownloadTest, ASecondPathWithoutSlashGoesRoundUntilCancelled) {
    connect(f413);
    image(oneSmall);
    parameters.m_strDownPathFile = {path("a.hex"), "b.hex"};
    int rounds = 0;
    onEvent = [&](InfoType type) {
        if (type == INFO_TYPE_ACTION && ++rounds == 50)
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(downloadPaths(), 0);
    EXPECT_EQ(events.back(), "CANCEL");
    EXPECT_EQ(rounds, 50);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 1u) << "the cursors stay at their end";
}

TEST_F(DownloadTest, WithoutSpimACancelDoesNotKeepTheEraseAway) {
    connect(f413);
    image(oneSmall);
    parameters.m_strDownPathFile = {path("a.hex")};
    bootLoader().DownloadToDevice(parameters);
    const std::string log = runCancelledAtFirstCall();
    EXPECT_NE(log.find(eraseOf(0)), std::string::npos) << log;
    EXPECT_EQ(log.find("ZVBL_DNLOAD"), std::string::npos) << log;
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(DownloadTest, ACancelAfterSpimWasEnabledKeepsTheEraseAway) {
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

TEST_F(DownloadTest, CancelWhileWriting) {
    connect(f413);
    image(threeElements);
    onEvent = [&](InfoType) {
        if (!calls({"ZVBL_DNLOAD"}).empty())
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(events.back(), "CANCEL");
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}).size(), 1u);
}

TEST_F(DownloadTest, CancelWhileErasingReachesTheSubOperation) {
    connect(f413);
    image(threeElements);
    onEvent = [&](InfoType) {
        if (events.back() == "ACTION 33")
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_ERASE"}).size(), 2u);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}), Lines());
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(DownloadTest, CancelWhileVerifying) {
    connect(f413);
    image(threeElements);
    parameters.m_bVerify = true;
    onEvent = [&](InfoType) {
        if (!calls({"ZVBL_VERIFY"}).empty())
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 1u);
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(DownloadTest, TheFinishingStepsInTheirOrder) {
    connect(f413, "all,-ACCESS_LEVEL_PROTECT_CMD");
    image(oneSmall);
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = 0x08000800;
    parameters.m_uiSNNumber = 0x01020304;
    parameters.m_UserSystemDataArray = userSystemData(0x00);
    parameters.m_UserSystemDataLen = 48;
    parameters.m_bFAP = true;
    parameters.m_bFAPLevel = 1;
    // The last of the reads is the one behind the protection.
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

TEST_F(DownloadTest, WithoutAProtectionStepUserSystemDataGoAsTheyAre) {
    connect(f413);
    image(oneSmall);
    parameters.m_UserSystemDataArray = userSystemData(0x00);
    parameters.m_UserSystemDataLen = 48;
    EXPECT_EQ(download({"a.hex"}), 0);
    const Lines written = calls({"TARGET_SetUserSystemData"});
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(written[0].substr(0, 64), "TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 data=00FFFF");
}

TEST_F(DownloadTest, JumpsToTheFirstElement) {
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

TEST_F(DownloadTest, AFailedFinishingStepEndsTheJob) {
    connect(f413);
    image(oneSmall);
    parameters.m_bJump = true;
    parameters.m_bFAP = true;
    library.script("ZVBL_ACCESS_PROTECT status=0x13");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(calls({"ZVBL_GO"}), Lines());
}

TEST_F(DownloadTest, SlibIsEnabledBehindTheEraseAndTakesEffectByAReset) {
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

TEST_F(DownloadTest, AFailureBehindTheEnablingResetsAndKeepsItsCode) {
    connect(f413);
    image(oneSmall);
    parameters.m_bEnableSlib = true;
    parameters.m_uiPassword = 1;
    parameters.m_usStartDataSector = 0xFFFF;
    library.script("ZVBL_GetSlibStatus_Ex enabled=1 datastart=65535\nZVBL_DNLOAD status=5\nZVBL_ResetMCU status=4");
    EXPECT_EQ(download({"a.hex"}), CResult::COM_READ_FAIL);
    EXPECT_EQ(calls({"ZVBL_ResetMCU"}).size(), 1u);
}

TEST_F(DownloadTest, AFailedResetBehindTheSlibIsTheResult) {
    connect(f413);
    image(oneSmall);
    parameters.m_bEnableSlib = true;
    parameters.m_uiPassword = 1;
    parameters.m_usStartDataSector = 0xFFFF;
    library.script("ZVBL_GetSlibStatus_Ex enabled=1 datastart=65535\nZVBL_ResetMCU status=4");
    EXPECT_EQ(download({"a.hex"}), CResult::COM_SEND_FAIL);
    EXPECT_EQ(events.back(), "ABEND");
}

TEST_F(DownloadTest, CancelBehindTheSlibResetsAndWritesNothing) {
    connect(f413);
    image(oneSmall);
    parameters.m_bEnableSlib = true;
    parameters.m_uiPassword = 1;
    parameters.m_usStartDataSector = 0xFFFF;
    library.script("ZVBL_GetSlibStatus_Ex enabled=1 datastart=65535");
    onEvent = [&](InfoType) {
        if (!calls({"ZVBL_GetSlibStatus_Ex"}).empty())
            bootLoader().m_ObOperation->Cancel();
    };
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"ZVBL_ResetMCU"}).size(), 1u);
    EXPECT_EQ(calls({"ZVBL_DNLOAD"}), Lines());
    EXPECT_EQ(events.back(), "CANCEL");
}

TEST_F(DownloadTest, AFailedFinishingStepResetsWhereSlibWasEnabled) {
    connect(f413);
    image(oneSmall);
    parameters.m_bEnableSlib = true;
    parameters.m_uiPassword = 1;
    parameters.m_usStartDataSector = 0xFFFF;
    parameters.m_bFAP = true;
    library.script("ZVBL_GetSlibStatus_Ex enabled=1 datastart=65535\nZVBL_ACCESS_PROTECT status=0x13");
    EXPECT_EQ(download({"a.hex"}), CResult::SYS_CMD_NOT_ALLOWED);
    EXPECT_EQ(calls({"ZVBL_ResetMCU"}).size(), 1u);
}

TEST_F(DownloadTest, ANullSubOperationIsAnUnknownError) {
    connect(f413);
    CDownload job(&bootLoader());
    CVerify *verify = job.m_obVerify;
    CErase *erase = job.m_obErase;
    job.m_obVerify = nullptr;
    job.m_obErase = nullptr;
    EXPECT_EQ(job.Verify(0, nullptr), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(job.Erase(ERASEMODE_NONE), CResult::UNKNOWN_ERROR);
    job.SetOperationInfoDelegate(nullptr);
    job.Cancel();
    job.m_obVerify = verify;
    job.m_obErase = erase;
}

TEST_F(DownloadTest, TheRecordStartsFromItsDefaults) {
    const DownloadParam fresh;
    EXPECT_EQ(fresh.m_enEraseMode, NECESSARY);
    EXPECT_EQ(fresh.m_bFAPLevel, 0);
    EXPECT_EQ(fresh.m_bFlashType, 0);
    EXPECT_EQ(fresh.m_UserSystemDataArray, nullptr);
    EXPECT_FALSE(fresh.m_bOptimize || fresh.m_bJump || fresh.m_bVerify || fresh.m_bFAP || fresh.m_bWriteSN ||
                 fresh.m_bEnableSlib || fresh.m_bEnBank3 || fresh.m_bRemapFlag || fresh.m_bNeedRemap);
}
