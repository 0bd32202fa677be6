#include "files/CFiles.h"
#include "tests/operations/OperationsTest.h"

namespace {
const std::string threeElements = "element address=08000000 fill=11\nelement address=08000800 fill=22\n"
                                  "element address=08001000 fill=33";
}

class VerifyTest : public OperationsTest {
protected:
    // A verify of an open file, as a download would run it.
    CVerify &prepare(const std::string &elements, bool optimise = false, uint offset = 0) {
        connect(f413);
        image(elements);
        auto *file = new CProgramFile;
        file->SetOptimizeForOpen(optimise);
        EXPECT_EQ(file->Open(path("a.hex"), bootLoader().m_ObDevice), 0);
        job = std::make_unique<CVerify>(&bootLoader());
        job->SetSubOperation(true);
        job->SetVerifyFile(file);
        job->SetAddressOffset(offset);
        listen(*job);
        return *job;
    }
    void TearDown() override { job.reset(); }
    std::unique_ptr<CVerify> job;
};

TEST_F(VerifyTest, OneElementAStep) {
    EXPECT_EQ(prepare(threeElements).Start(), 0);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 3u);
    EXPECT_EQ(events,
              (Lines{"INIT Verify------(a.hex)", "ACTION 0", "ACTION 33", "ACTION 66", "ACTION 100", "ACTION 100"}));
    EXPECT_EQ(lastInit.m_strFilePath, path("a.hex"));
    EXPECT_EQ(lastInit.m_uiFileSize, 6144u);
    EXPECT_EQ(job->m_ActionInfo.m_uiFileStatus, 6144u);
}

TEST_F(VerifyTest, TheOffsetAndTheFilesOwnFlag) {
    EXPECT_EQ(prepare("element address=08000010 length=4 fill=AA", true, 0x1000).Start(), 0);
    EXPECT_EQ(library.log(), "ZVBL_VERIFY h=1001 addr=08001010 len=4 data=AAAAAAAA optimise=1\n");
}

TEST_F(VerifyTest, ASecondRunStartsFromTheFirstElement) {
    CVerify &verify = prepare("element address=08000000 length=4");
    EXPECT_EQ(verify.Start(), 0);
    EXPECT_EQ(verify.Start(), 0);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 2u);
    EXPECT_EQ(events[5], "ACTION 0");
}

TEST_F(VerifyTest, PercentMultipliesFirst) {
    std::string elements;
    for (int i = 0; i < 100; ++i)
        elements += "element address=" + QString::number(0x08000000 + i * 64, 16).toStdString() + " length=64\n";
    EXPECT_EQ(prepare(elements).Start(), 0);
    EXPECT_EQ(events[2 + 28], "ACTION 29") << "29 of 100";
}

TEST_F(VerifyTest, AMismatchEndsIt) {
    CVerify &verify = prepare(threeElements);
    library.script("ZVBL_VERIFY status=19 nth=2");
    EXPECT_EQ(verify.Start(), CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 2u);
    EXPECT_EQ(events.back(), "ACTION 33") << "silent as a sub-operation";
}

TEST_F(VerifyTest, ALinkFailureKeepsItsCode) {
    CVerify &verify = prepare(threeElements);
    library.script("ZVBL_VERIFY status=0x14");
    EXPECT_EQ(verify.Start(), CResult::SYS_CMD_FAIL);
}

TEST_F(VerifyTest, NoFile) {
    connect(f413);
    CVerify verify(&bootLoader());
    verify.SetSubOperation(true);
    EXPECT_EQ(verify.Start(), CResult::UNKNOWN_ERROR);
    EXPECT_EQ(verify.Action(), CResult::UNKNOWN_ERROR);
}

TEST_F(VerifyTest, APathWithoutSlashLeavesTheCommandAsItWas) {
    CVerify &verify = prepare(threeElements);
    verify.m_obProgramFile->m_StrPath = "a.hex";
    EXPECT_EQ(verify.Start(), 0);
    EXPECT_FALSE(verify.IsContinue() || verify.IsDone() || verify.IsCancel());
    EXPECT_EQ(library.log(), "");
}
