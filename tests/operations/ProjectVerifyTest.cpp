#include "tests/operations/ProjectTest.h"

class ProjectVerifyTest : public ProjectTest {};

TEST_F(ProjectVerifyTest, AVerifyReportsAsADownloadDoes) {
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

TEST_F(ProjectVerifyTest, VerifyAddsTheStartAddressOfABinaryFileAndDownloadDoesNot) {
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

TEST_F(ProjectVerifyTest, VerifyFailures) {
    connect(f413);
    parameters.m_bVerify = true;
    library.script("ZVBL_VERIFY status=19");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING);
    library.script("ZVBL_VERIFY status=5");
    EXPECT_EQ(download({file({part(0x08000000, 16)})}), CResult::COM_READ_FAIL);
    CVerifyProject empty(&bootLoader());
    EXPECT_EQ(empty.Action(), CResult::UNKNOWN_ERROR);
}

TEST_F(ProjectVerifyTest, MorePartsThanTheTypeHasLetters) {
    connect(f413);
    CVerifyProject verify(&bootLoader());
    verify.SetVerifyFile(file({part(0x08000000, 4), part(0x08000800, 4), part(0x08001000, 4), part(0x08001800, 4)}));
    EXPECT_EQ(verify.Action(), 0);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 4u);
}

TEST_F(ProjectVerifyTest, APartThatClaimsMoreThanItHoldsIsRefused) {
    connect(f413);
    CVerifyProject verify(&bootLoader());
    HEXFILEPARTINFO whole = part(0x08000000, sizeof HEXFILEPARTINFO::pData);
    verify.SetVerifyFile(file({whole}));
    EXPECT_EQ(verify.Action(), 0);
    ++whole.PartSize;
    verify.SetVerifyFile(file({whole}));
    EXPECT_EQ(verify.Action(), CResult::PROGRAM_INPUT_PARAMS_ERROR);
}

TEST_F(ProjectVerifyTest, ACancelledVerifyComparesNoMore) {
    connect(f413);
    CVerifyProject verify(&bootLoader());
    verify.SetSubOperation(true);
    verify.SetVerifyFile(file({part(0x08000000, 4), part(0x08000800, 4)}));
    int actions = 0;
    onEvent = [&](InfoType type) {
        if (type == INFO_TYPE_ACTION && ++actions == 2) // the first is the beginning
            verify.Cancel();
    };
    listen(verify);
    EXPECT_EQ(verify.Start(), 0);
    EXPECT_EQ(calls({"ZVBL_VERIFY"}).size(), 1u);
}
