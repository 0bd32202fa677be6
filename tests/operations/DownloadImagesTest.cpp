#include "tests/operations/DownloadTest.h"

class DownloadImagesTest : public DownloadTest {};

TEST_F(DownloadImagesTest, AFileThatOpensLateIsTaken) {
    connect(f413);
    std::string script = oneSmall;
    for (int attempt = 1; attempt < 10; ++attempt)
        script += "\nFILES_ImageFromFile status=3 nth=" + std::to_string(attempt);
    image(script);
    EXPECT_EQ(download({"a.hex"}), 0);
    EXPECT_EQ(calls({"sleep"}), Lines(9, "sleep 1000"));
}

TEST_F(DownloadImagesTest, TenFailedAttemptsAreTheEnd) {
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

TEST_F(DownloadImagesTest, AnEmptyImageIsRefused) {
    connect(f413);
    image("no-elements");
    EXPECT_EQ(download({"a.hex"}), CResult::FILES_EMPTY);
    EXPECT_EQ(library.log(), "");
}

TEST_F(DownloadImagesTest, AFileIsTakenOnceItIsOpenAndHasElements) {
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

TEST_F(DownloadImagesTest, AJobDoesNotDeleteTheFilesItWasLent) {
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
TEST_F(DownloadImagesTest, AMapThatDisagreesWithItselfEndsTheDownloadBeforeTheErase) {
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

TEST_F(DownloadImagesTest, AFileOfNoKnownTypeIsRefused) {
    connect(f413);
    image(oneSmall);
    EXPECT_EQ(download({"a.txt"}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(library.log(), "");
}

TEST_F(DownloadImagesTest, NoPathsAtAll) {
    connect(f413);
    parameters.m_strDownPathFile.clear();
    EXPECT_EQ(downloadPaths(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(events, Lines{"ABEND"});
}

TEST_F(DownloadImagesTest, AFirstPathWithoutSlashDoesNothingAndHasNoEndEvent) {
    connect(f413);
    parameters.m_strDownPathFile = {"a.hex"};
    EXPECT_EQ(downloadPaths(), 0);
    EXPECT_EQ(events, (Lines{"INIT ", "ACTION 0"}));
    EXPECT_EQ(library.log(), "");
}

TEST_F(DownloadImagesTest, ASecondPathWithoutSlashGoesRoundUntilCancelled) {
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

TEST_F(DownloadImagesTest, WithoutAMapNothingIsTouchedInAnyEraseMode) {
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
