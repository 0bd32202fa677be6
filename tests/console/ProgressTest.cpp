#include "app/Progress.h"

#include <gtest/gtest.h>

#include "FakeLink.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"

namespace {

// Events without a running job, and what they print.
class Progress : public testing::Test {
protected:
    Progress() {
        g_shareParameter.c_obCCom = nullptr;
        g_shareParameter.c_OperationFlag = true;
        g_shareParameter.c_OperationSucceedFlag = true;
        g_shareParameter.c_operationPersent = 0;
    }

    static std::string initText(OP_Type type) {
        CInitInfo info;
        info.m_emType = type;
        info.m_strFilePath = "/x/a.hex";
        info.m_uiFileSize = 4096;
        testing::internal::CaptureStdout();
        GetOperationInfo(INFO_TYPE_INIT, &info);
        return testing::internal::GetCapturedStdout();
    }
    static std::string percentText(OP_Type type, std::initializer_list<int> percents) {
        testing::internal::CaptureStdout();
        for (const int percent : percents) {
            CActionInfo info;
            info.m_emType = type;
            info.m_iPercent = percent;
            GetOperationInfo(INFO_TYPE_ACTION, &info);
        }
        return testing::internal::GetCapturedStdout();
    }
    static std::string doneText(OP_Type type) {
        CBaseInfo info;
        info.m_emType = type;
        testing::internal::CaptureStdout();
        GetOperationInfo(INFO_TYPE_DONE, &info);
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(Progress, Titles) {
    const struct {
        OP_Type type;
        const char *title;
    } table[] = {
        {OP_ERASE, "Erase"},
        {OP_DOWNLOAD, "Download"},
        {OP_VERIFY, "Verify"},
        {OP_UPLOAD, "Upload"},
        {OP_ACCESS_PROTECT, "Enable access protection"},
        {OP_ACCESS_UNPROTECT, "Disable access protection"},
        {OP_ERASEPROGRAM_PROTECT, "Enable erase and program protection"},
        {OP_ERASEPROGRAM_UNPROTECT, "Disable erase and program protection"},
        {OP_FWCRC, "Firmware CRC Check"},
        {OP_ENBANK3, "Enable Bank3"},
        {OP_WRITESN, "Write serial number"},
        {OP_WRITEUSERSYSTEMDATA, "Write user system data file"},
        {OP_ENSLIB, "Enable sLib"},
        {OP_DISSLIB, "Disable sLib"},
        {OP_DOWNLOADPROJECT, "Unknown error!"},
        {OP_FLASHCRC, "Flash CRC calculate"},
    };
    for (const auto &row : table)
        EXPECT_EQ(GetOperatioStringName(row.type), row.title);
}

TEST_F(Progress, Start) {
    EXPECT_EQ(initText(OP_ERASE), "Erase\n");
    EXPECT_EQ(initText(OP_DOWNLOAD), "Download\n/x/a.hex     4096B\n");
    EXPECT_EQ(initText(OP_VERIFY), "Verify\n/x/a.hex     4096B\n");
    EXPECT_EQ(initText(OP_UPLOAD), "Upload\n/x/a.hex     4096B\n");
    EXPECT_EQ(initText(OP_ENBANK3), "Enable Bank3\nRunning...\n");
    EXPECT_EQ(initText(OP_DOWNLOADPROJECT), "Unknown error!\nRunning...\n");
}

TEST_F(Progress, Percent) {
    EXPECT_EQ(percentText(OP_ERASE, {0, 0, 33, 33, 66, 100, 100}), "\rRunning...33%\rRunning...66%\rRunning...100%\n");
    EXPECT_EQ(percentText(OP_ENBANK3, {0, 50, 100}), "");
}

TEST_F(Progress, PercentJumps) {
    EXPECT_EQ(percentText(OP_DOWNLOAD, {50, 100}), "\rRunning...50%\rRunning...100%\n");
}

TEST_F(Progress, PercentStartsOverWithEachTitle) {
    percentText(OP_DOWNLOAD, {50, 100});
    initText(OP_VERIFY);
    EXPECT_EQ(percentText(OP_VERIFY, {0, 100}), "\rRunning...100%\n");
}

TEST_F(Progress, Success) {
    const struct {
        OP_Type type;
        const char *text;
    } table[] = {
        {OP_ERASE, "Erase successfully!\n"},
        {OP_DOWNLOAD, "Download successfully!\n"},
        {OP_VERIFY, "Operation finished successfully!\n"},
        {OP_UPLOAD, "Upload successfully!\n"},
        {OP_ACCESS_PROTECT, "Enable access protection successfully!\n"},
        {OP_ACCESS_UNPROTECT, "Disable access protection successfully!\n"},
        {OP_ERASEPROGRAM_PROTECT, "Enable erase and program protection successfully!\n"},
        {OP_ERASEPROGRAM_UNPROTECT, "Disable erase and program protection successfully!\n"},
        {OP_FWCRC, "Firmware CRC check successfully!\n"},
        {OP_ENBANK3, "Operation finished successfully!\n"},
        {OP_FLASHCRC, "Operation finished successfully!\n"},
    };
    for (const auto &row : table) {
        g_shareParameter.c_OperationFlag = true;
        EXPECT_EQ(doneText(row.type), row.text);
        EXPECT_FALSE(g_shareParameter.c_OperationFlag);
        EXPECT_TRUE(g_shareParameter.c_OperationSucceedFlag);
    }
}

TEST_F(Progress, AbnormalEnd) {
    CAbendInfo info;
    info.m_iResult = CResult::SYS_ACCESS_PROTECTION;
    testing::internal::CaptureStdout();
    GetOperationInfo(INFO_TYPE_ABEND, &info);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\nThe device is access protection!\n");
    EXPECT_FALSE(g_shareParameter.c_OperationFlag);
    EXPECT_FALSE(g_shareParameter.c_OperationSucceedFlag);
}

TEST_F(Progress, Cancel) {
    CBaseInfo info;
    testing::internal::CaptureStdout();
    GetOperationInfo(INFO_TYPE_CANCEL, &info);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Operation has been canceled!\n");
    EXPECT_FALSE(g_shareParameter.c_OperationFlag);
    EXPECT_FALSE(g_shareParameter.c_OperationSucceedFlag);
}

// A job that ends as soon as it runs, one way or the other.
class ShortJob : public COperation {
public:
    ShortJob(CBootLoader *control, int endCode) : COperation(control), code(endCode) { m_EmType = OP_ENBANK3; }
    ~ShortJob() override { WaitUntilEnded(); }
    int Action() override {
        CallCommand(COMMAND_DONE);
        return code;
    }

private:
    const int code;
};

TEST_F(Progress, JobsThatEndAtOnce) {
    FakeLink fake;
    CBootLoader &control = *fake.link.m_ObBootLoader;
    for (int round = 0; round < 200; ++round) {
        const int code = round % 2 == 0 ? 0 : CResult::SYS_CMD_FAIL;
        control.FreeOperation();
        control.m_ObOperation = new ShortJob(&control, code);
        testing::internal::CaptureStdout();
        const bool succeeded = runJob(&fake.link);
        const std::string text = testing::internal::GetCapturedStdout();
        ASSERT_EQ(succeeded, code == 0);
        ASSERT_EQ(text, std::string("Enable Bank3\nRunning...\n") +
                            (code == 0 ? "Operation finished successfully!\n" : "\nUnknown error!\n"));
        ASSERT_FALSE(control.m_ObOperation->CurrentRun().isUnderWay());
        ASSERT_EQ(control.m_ObOperation->m_lpFunc, nullptr);
        ASSERT_EQ(g_shareParameter.c_obCCom, &fake.link);
    }
}

TEST_F(Progress, StopLeavesTheLinkOpen) {
    FakeLink fake;
    g_shareParameter.c_obCCom = &fake.link;
    Stop();
    EXPECT_FALSE(g_shareParameter.c_OperationFlag);
    EXPECT_NE(fake.link.m_ObBootLoader, nullptr);
    g_shareParameter.c_obCCom = nullptr;
}

TEST_F(Progress, StartWithoutAJob) {
    FakeLink fake;
    Start(&fake.link);
    EXPECT_EQ(g_shareParameter.c_obCCom, &fake.link);
    EXPECT_FALSE(runJob(&fake.link)); // and does not wait
    g_shareParameter.c_obCCom = nullptr;
}

TEST_F(Progress, OtherEventsPrintNothing) {
    std::string text;
    testing::internal::CaptureStdout();
    GetOperationInfo(INFO_TYPE_INFO, &text);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(g_shareParameter.c_OperationFlag);
}

TEST_F(Progress, AnEventThatNobodyKnowsPrintsNothing) {
    testing::internal::CaptureStdout();
    GetOperationInfo(static_cast<InfoType>(INFO_TYPE_INFO + 1), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_TRUE(g_shareParameter.c_OperationFlag);
}

TEST_F(Progress, AClosedLinkHasNoJobToStop) {
    CCom closed;
    g_shareParameter.c_obCCom = &closed;
    Stop();
    EXPECT_FALSE(g_shareParameter.c_OperationFlag);
    g_shareParameter.c_obCCom = nullptr;
}

} // namespace
