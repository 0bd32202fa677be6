#include "files/CFiles.h"
#include "tests/operations/OperationsTest.h"

class UploadTest : public OperationsTest {
protected:
    int upload(QList<int> sectors, int bank3Size = 0) {
        abendCode = 0;
        events.clear();
        library.clearLog();
        setenv("FILES_DOUBLE_LOG", filesLog().c_str(), 1);
        bootLoader().UploadFromDevice(UploadParam{QString::fromStdString(path("up.bin")), sectors, bank3Size});
        const int code = run();
        unsetenv("FILES_DOUBLE_LOG");
        return code;
    }
    std::string filesLog() const { return path("files.log"); }
    Lines filesCalls(const std::string &function) const {
        Lines found;
        std::ifstream log(filesLog());
        for (std::string line; std::getline(log, line);)
            if (line.rfind(function, 0) == 0)
                found.push_back(line);
        return found;
    }
};

TEST_F(UploadTest, OneElementAStepAndTheFileLast) {
    connect(f413);
    library.script("ZVBL_UPLOAD fill=5A");
    EXPECT_EQ(upload({0, 2, 3}), 0);
    EXPECT_EQ(library.log(), "ZVBL_UPLOAD h=1001 addr=08000000 len=2048\nZVBL_UPLOAD h=1001 addr=08001000 len=2048\n"
                             "ZVBL_UPLOAD h=1001 addr=08001800 len=2048\n");
    EXPECT_EQ(events, (Lines{"INIT Upload", "ACTION 0", "ACTION 33", "ACTION 66", "ACTION 100", "ACTION 100", "DONE"}));
    EXPECT_EQ(lastInit.m_strFilePath, path("up.bin"));
    EXPECT_EQ(lastInit.m_uiFileSize, 6144u);
    EXPECT_EQ(bootLoader().m_ObOperation->m_ActionInfo.m_uiFileStatus, 6144u);
    const Lines stored = filesCalls("FILES_SetImageElement");
    ASSERT_EQ(stored.size(), 3u);
    EXPECT_NE(stored[1].find("index=1 insert=1 address=08001000 length=2048 data=5A5A5A5A"), std::string::npos)
        << stored[1];
    ASSERT_EQ(filesCalls("FILES_ImageToFile").size(), 1u);
    EXPECT_NE(filesCalls("FILES_ImageToFile")[0].find("elements=3 bytes=6144"), std::string::npos);
}

TEST_F(UploadTest, AnEmptyListIsEverySector) {
    connect(f413);
    EXPECT_EQ(upload({}), 0);
    EXPECT_EQ(calls({"ZVBL_UPLOAD"}).size(), 128u);
    EXPECT_NE(filesCalls("FILES_SetImageElement")[0].find("insert=0"), std::string::npos);
}

TEST_F(UploadTest, SpimSectorsFollowTheFlash) {
    connect(f413);
    EXPECT_EQ(upload({32769}, 8), 0);
    EXPECT_EQ(library.log(), "ZVBL_UPLOAD h=1001 addr=08401000 len=4096\n");
    EXPECT_NE(filesCalls("FILES_CreateImageFromMapping")[0].find("bank3=8"), std::string::npos);
}

TEST_F(UploadTest, AFailureBeforeTheSaveWritesNoFile) {
    connect(f413);
    const struct {
        const char *link, *files;
        int code;
    } cases[] = {
        {"ZVBL_UPLOAD status=5 nth=2", "", CResult::COM_READ_FAIL},
        {"", "FILES_SetImageElement status=15 nth=1", CResult::FILES_SETELEMENTFULL},
        {"", "FILES_CreateImageFromMapping status=8", CResult::FILES_BADPARAMETER},
    };
    for (const auto &one : cases) {
        library.script(one.link);
        image(one.files);
        EXPECT_EQ(upload({0, 1}), one.code);
        EXPECT_EQ(events.back(), "ABEND");
        EXPECT_EQ(filesCalls("FILES_ImageToFile"), Lines());
    }
}

TEST_F(UploadTest, AFailedSaveAbends) {
    connect(f413);
    image("FILES_ImageToFile status=3");
    EXPECT_EQ(upload({0}), CResult::FILES_UNABLETOOPENFILE);
    EXPECT_EQ(events, (Lines{"INIT Upload", "ACTION 0", "ACTION 100", "ABEND"}));
    EXPECT_FALSE(bootLoader().m_ObOperation->IsDone());
}

TEST_F(UploadTest, NoDevice) {
    open(USART);
    EXPECT_EQ(upload({0}), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(events, Lines{"ABEND"});
}
