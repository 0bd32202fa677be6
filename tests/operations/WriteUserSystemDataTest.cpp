#include "tests/operations/OperationsTest.h"

class WriteUserSystemDataTest : public OperationsTest {
protected:
    // An element image of 48 bytes: compact byte i is i + 1.
    static std::vector<BYTE> elementImage() {
        std::vector<BYTE> bytes;
        for (BYTE i = 1; i <= 24; ++i) {
            bytes.push_back(i);
            bytes.push_back(static_cast<BYTE>(~i));
        }
        return bytes;
    }
    template <class Job>
    int write(std::vector<BYTE> bytes) {
        auto *job = new Job(&bootLoader());
        bootLoader().FreeOperation();
        bootLoader().m_ObOperation = job;
        job->SetParameters(bytes.data(), static_cast<quint32>(bytes.size()));
        std::fill(bytes.begin(), bytes.end(), BYTE{0}); // the job has its own copy
        library.clearLog();
        events.clear();
        return run();
    }
};

TEST_F(WriteUserSystemDataTest, WritesItsCopy) {
    connect(f413);
    EXPECT_EQ(write<CWriteUserSystemData>(elementImage()), 0);
    const Lines written = calls({"TARGET_SetUserSystemData"});
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(written[0].substr(0, 90), "TARGET_SetUserSystemData h=1001 addr=1FFFF800 len=24 "
                                        "data=0102030405060708090A0B0C0D0E0F10");
    EXPECT_EQ(events, (Lines{"INIT Write user system data file", "ACTION 0", "ACTION 100", "DONE"}));
    EXPECT_EQ(lastInit.m_emType, OP_WRITEUSERSYSTEMDATA);
}

TEST_F(WriteUserSystemDataTest, TheProjectsJobDoesTheSame) {
    EXPECT_FALSE((std::is_base_of<CWriteUserSystemData, CWriteUserSystemDataProject>::value)) << "a job of its own";
    connect(f413);
    EXPECT_EQ(write<CWriteUserSystemDataProject>(elementImage()), 0);
    EXPECT_EQ(calls({"TARGET_SetUserSystemData"}).size(), 1u);
    EXPECT_EQ(lastInit.m_strName, "Write user system data file");
}

TEST_F(WriteUserSystemDataTest, AFailedWriteKeepsItsCode) {
    connect(f413);
    library.script("TARGET_SetUserSystemData status=5");
    EXPECT_EQ(write<CWriteUserSystemData>(elementImage()), CResult::COM_READ_FAIL);
    EXPECT_EQ(events.back(), "ABEND");
    EXPECT_FALSE(bootLoader().m_ObOperation->IsDone());
}

TEST_F(WriteUserSystemDataTest, WithoutData) {
    connect(f413);
    CWriteUserSystemData job(&bootLoader());
    EXPECT_EQ(run(job), CResult::FILES_EMPTY);
    EXPECT_EQ(library.log(), "");
}

template <class Job>
void expectTheSecondRecord() {
    Job job(nullptr);
    BYTE first[] = {1, 2, 3}, second[] = {9};
    job.SetParameters(first, 3);
    job.SetParameters(second, 1);
    EXPECT_EQ(job.m_UserSystemDataLen, 1u);
    EXPECT_EQ(job.m_UserSystemData[0], 9);
}

TEST_F(WriteUserSystemDataTest, ASecondRecordReplacesTheFirst) {
    expectTheSecondRecord<CWriteUserSystemData>();
    expectTheSecondRecord<CWriteUserSystemDataProject>();
}
