#include "tests/operations/DownloadTest.h"

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

TEST_F(DownloadTest, TheFirstFamiliesRestartBeforeTheVerify) {
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
