#include "tests/operations/OperationsTest.h"

class WriteSNTest : public OperationsTest {
protected:
    int write(CWriteSN &job, WriteSN_Param record) {
        job.SetParameters(&record);
        return runAnew(job);
    }
};

TEST_F(WriteSNTest, WritesVerifiesSteps) {
    connect(f413);
    CWriteSN job(&bootLoader());
    EXPECT_EQ(write(job, {0x0800FFF0, 0x12345678, 3}), 0);
    EXPECT_EQ(library.log(), "TARGET_GetUserSystemData h=1001 addr=1FFFF800 len=24\n"
                             "ZVBL_DNLOAD h=1001 addr=0800FFF0 len=4 data=78563412 optimise=0\n"
                             "ZVBL_VERIFY h=1001 addr=0800FFF0 len=4 data=78563412 optimise=0\n");
    EXPECT_EQ(job.m_Parameters.m_uiSNNumber, 0x1234567Bu);
    EXPECT_EQ(events, (Lines{"INIT Write serial number", "ACTION 0", "ACTION 100", "DONE"}));
    EXPECT_EQ(lastInit.m_emType, OP_WRITESN);
}

TEST_F(WriteSNTest, AFailureDoesNotStep) {
    connect(f413);
    CWriteSN job(&bootLoader());
    library.script("ZVBL_DNLOAD status=0x14");
    EXPECT_EQ(write(job, {0x08000000, 5, 1}), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}), Lines());
    EXPECT_EQ(job.m_Parameters.m_uiSNNumber, 5u);
    library.script("ZVBL_VERIFY status=19");
    EXPECT_EQ(write(job, {0x08000000, 5, 1}), CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING);
    EXPECT_EQ(job.m_Parameters.m_uiSNNumber, 5u);
}

TEST_F(WriteSNTest, AProtectedSectorIsNotTouched) {
    connect(f413);
    CWriteSN job(&bootLoader());
    library.script("TARGET_GetUserSystemData data=A5FFFFFFFDFFFFFF"); // bit 1: sectors 2 and 3
    for (uint address : {0x08001000u, 0x08001FFCu, 0x08000FFEu}) {
        EXPECT_EQ(write(job, {address, 5, 1}), CResult::SYS_ERASEPROGRAM_PROTECTION) << std::hex << address;
        EXPECT_EQ(calls({"ZVBL_DNLOAD"}), Lines());
    }
    EXPECT_EQ(write(job, {0x08000FFC, 5, 1}), 0) << "its neighbour is";
}

TEST_F(WriteSNTest, TheDownloadKeepsTheNextNumber) {
    connect(f413);
    image("element address=08000000 length=4");
    DownloadParam parameters;
    parameters.m_strDownPathFile = {path("a.hex")};
    parameters.m_bWriteSN = true;
    parameters.m_uiSNAddress = 0x08000800;
    parameters.m_uiSNNumber = 100;
    parameters.m_uiSNStep = 10;
    bootLoader().DownloadToDevice(parameters);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(static_cast<CDownload *>(bootLoader().m_ObOperation)->m_Parameters.m_uiSNNumber, 110u);
}
