#include <future>
#include <thread>

#include "tests/operations/OperationsTest.h"

namespace {

// A job of so many steps, that can fail at each stage.
class Steps : public COperation {
public:
    explicit Steps(CBootLoader *control, int steps = 1) : COperation(control), left(steps) {
        m_EmType = OP_UPLOAD;
        m_strName = "Steps";
    }
    int InitAction() override {
        if (skipBase)
            return 0;
        COperation::InitAction();
        thread = QThread::currentThread();
        return initResult;
    }
    int Action() override {
        CalculatePercent();
        if (--left <= 0)
            CallCommand(COMMAND_DONE);
        return actionResult;
    }
    int ActionDone() override {
        ++doneCalls;
        if (cancelInDone)
            Cancel();
        return doneResult;
    }

    int left;
    bool skipBase = false;
    bool cancelInDone = false;
    int initResult = 0, actionResult = 0, doneResult = 0, doneCalls = 0;
    QThread *thread = nullptr;
};

// A job that runs another one as its sub-operation.
class Owner : public COperation {
public:
    Owner(CBootLoader *control, Steps &sub) : COperation(control), owned(sub) {
        m_EmType = OP_DOWNLOAD;
        m_strName = "Owner";
        owned.SetSubOperation(true);
    }
    void SetOperationInfoDelegate(void *listener) override {
        COperation::SetOperationInfoDelegate(listener);
        owned.SetOperationInfoDelegate(listener);
    }
    int Action() override {
        thread = QThread::currentThread();
        const int result = owned.Start();
        subHasEnded = !owned.HasStart();
        if (result == 0)
            CallCommand(COMMAND_DONE);
        return result;
    }
    Steps &owned;
    bool subHasEnded = false;
    QThread *thread = nullptr;
};

} // namespace

class COperationTest : public OperationsTest {};

TEST_F(COperationTest, TheEventsOfAJob) {
    Steps job(nullptr, 2);
    EXPECT_FALSE(job.HasStart());
    EXPECT_EQ(run(job), 0);
    EXPECT_EQ(events, (Lines{"INIT Steps", "ACTION 0", "ACTION 100", "ACTION 100", "DONE"}));
    EXPECT_FALSE(job.HasStart());
    EXPECT_TRUE(job.IsDone());
    EXPECT_EQ(job.thread, static_cast<QThread *>(&job)) << "a top-level job has its own thread";
}

TEST_F(COperationTest, AFailedPreparationRaisesOnlyAbend) {
    Steps job(nullptr);
    job.initResult = CResult::FILES_EMPTY;
    EXPECT_EQ(run(job), CResult::FILES_EMPTY);
    EXPECT_EQ(events, Lines{"ABEND"});
    EXPECT_FALSE(job.HasStart());
}

TEST_F(COperationTest, AFailedActionSkipsTheFinish) {
    Steps job(nullptr, 3);
    job.actionResult = CResult::SYS_CMD_FAIL;
    EXPECT_EQ(run(job), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(events, (Lines{"INIT Steps", "ACTION 0", "ABEND"}));
    EXPECT_EQ(job.doneCalls, 0);
}

TEST_F(COperationTest, AFailedFinishAbends) {
    Steps job(nullptr);
    job.doneResult = CResult::SYS_CMD_FAIL;
    EXPECT_EQ(run(job), CResult::SYS_CMD_FAIL);
    EXPECT_EQ(events, (Lines{"INIT Steps", "ACTION 0", "ACTION 100", "ABEND"}));
}

TEST_F(COperationTest, APreparationThatSkipsTheBaseHasNoEndEvent) {
    Steps job(nullptr);
    job.skipBase = true;
    EXPECT_EQ(run(job), 0);
    EXPECT_EQ(events, (Lines{"INIT ", "ACTION 0"}));
    EXPECT_FALSE(job.HasStart());
}

TEST_F(COperationTest, CancelBeforeStartDoesNothing) {
    Steps job(nullptr);
    job.Cancel();
    EXPECT_FALSE(job.IsCancel());
    EXPECT_EQ(run(job), 0);
    EXPECT_EQ(events.back(), "DONE");
}

TEST_F(COperationTest, CancelWhileRunning) {
    Steps job(nullptr, 100);
    onEvent = [&](InfoType) {
        if (events.size() == 4)
            job.Cancel();
    };
    EXPECT_EQ(run(job), 0);
    EXPECT_EQ(events, (Lines{"INIT Steps", "ACTION 0", "ACTION 100", "ACTION 100", "CANCEL"}));
    EXPECT_EQ(job.doneCalls, 0);
}

TEST_F(COperationTest, CancelDuringTheFinish) {
    Steps job(nullptr);
    job.cancelInDone = true;
    EXPECT_EQ(run(job), 0);
    EXPECT_EQ(events, (Lines{"INIT Steps", "ACTION 0", "ACTION 100", "CANCEL"}));
}

TEST_F(COperationTest, ASubOperationReportsStartAndProgressOnly) {
    Steps sub(nullptr);
    Owner job(nullptr, sub);
    EXPECT_EQ(run(job), 0);
    EXPECT_EQ(events, (Lines{"INIT Owner", "ACTION 0", "INIT Steps", "ACTION 0", "ACTION 100", "ACTION 0", "DONE"}));
    EXPECT_TRUE(job.subHasEnded) << "its start returns when it has ended";
    EXPECT_EQ(sub.thread, job.thread);
    EXPECT_TRUE(sub.m_InitInfo.m_bSubOperation);
}

TEST_F(COperationTest, AFailedSubOperationLeavesTheAbendToItsOwner) {
    Steps sub(nullptr, 5);
    sub.actionResult = CResult::COM_READ_FAIL;
    Owner job(nullptr, sub);
    EXPECT_EQ(run(job), CResult::COM_READ_FAIL);
    EXPECT_EQ(events, (Lines{"INIT Owner", "ACTION 0", "INIT Steps", "ACTION 0", "ABEND"}));
}

TEST_F(COperationTest, ASubOperationThatCannotPrepareIsSilent) {
    Steps sub(nullptr);
    sub.initResult = CResult::FILES_EMPTY;
    Owner job(nullptr, sub);
    EXPECT_EQ(run(job), CResult::FILES_EMPTY);
    EXPECT_EQ(events, (Lines{"INIT Owner", "ACTION 0", "ABEND"}));
}

TEST_F(COperationTest, WithoutAListenerTheJobRunsAllTheSame) {
    Steps job(nullptr);
    job.Start();
    job.WaitUntilEnded();
    EXPECT_TRUE(job.IsDone());
    EXPECT_EQ(job.doneCalls, 1);
    EXPECT_TRUE(events.empty());
}

TEST_F(COperationTest, NothingIsReportedOnceTheListenerHasLeft) {
    Steps job(nullptr, 5);
    onEvent = [&](InfoType) { job.SetOperationInfoDelegate(nullptr); };
    run(job);
    EXPECT_EQ(events, Lines{"INIT Steps"});
}

TEST_F(COperationTest, AJobCanRunAgain) {
    Steps sub(nullptr);
    sub.SetSubOperation(true);
    listen(sub);
    EXPECT_EQ(sub.Start(), 0);
    sub.left = 2;
    EXPECT_EQ(sub.Start(), 0);
    EXPECT_EQ(events,
              (Lines{"INIT Steps", "ACTION 0", "ACTION 100", "INIT Steps", "ACTION 0", "ACTION 100", "ACTION 100"}));
}

TEST_F(COperationTest, ThePortTagIsTheLowHalfOfTheHandle) {
    CBootLoader &control = connect(f413);
    HANDLE real = control.m_handle;
    control.m_handle = reinterpret_cast<HANDLE>(0x1122334455667788);
    Steps job(&control);
    EXPECT_EQ(run(job), 0);
    control.m_handle = real;
    EXPECT_EQ(job.m_BaseInfo.m_nPortNum, 0x55667788);
    EXPECT_EQ(job.m_InitInfo.m_nPortNum, 0x55667788);
    EXPECT_EQ(job.m_ActionInfo.m_nPortNum, 0x55667788);
    EXPECT_EQ(job.m_AbendInfo.m_nPortNum, 0x55667788);
    EXPECT_EQ(job.m_BaseInfo.m_emType, OP_UPLOAD);
    EXPECT_EQ(job.m_InitInfo.m_emType, OP_UPLOAD);
    EXPECT_EQ(job.m_ActionInfo.m_emType, OP_UPLOAD);
}

TEST_F(COperationTest, ThePreparationClearsWhatTheLastRunLeft) {
    Steps job(nullptr);
    job.m_InitInfo.m_strFilePath = "/x";
    job.m_InitInfo.m_uiFileSize = 7;
    job.m_ActionInfo.m_iPercent = 50;
    job.m_ActionInfo.m_uiFileStatus = 7;
    EXPECT_EQ(job.COperation::InitAction(), 0);
    EXPECT_EQ(job.m_InitInfo.m_strFilePath, "");
    EXPECT_EQ(job.m_InitInfo.m_uiFileSize, 0u);
    EXPECT_EQ(job.m_ActionInfo.m_iPercent, 0);
    EXPECT_EQ(job.m_ActionInfo.m_uiFileStatus, 0u);
    EXPECT_TRUE(job.IsContinue());
}

// The form with an object belongs to no job: it knows nothing of a job's own count.
TEST_F(COperationTest, PercentIs100WhereAJobHasNoFormula) {
    COperation plain(nullptr);
    plain.CalculatePercent();
    EXPECT_EQ(plain.m_ActionInfo.m_iPercent, 100);
    CErase counting(nullptr);
    counting.m_iAllSectorNum = 4;
    counting.COperation::CalculatePercent(QObject());
    EXPECT_EQ(counting.m_ActionInfo.m_iPercent, 100);
    EXPECT_EQ(counting.m_iAddSectorNum, 0);
}

TEST_F(COperationTest, TheTableOfTheChecksumIsDeclared) {
    EXPECT_TRUE((std::is_same<decltype(COperation::crc32table), uint[258]>::value));
}

TEST_F(COperationTest, TheKindsHaveTheirNumbers) {
    const std::vector<int> kinds = {OP_ERASE,
                                    OP_DOWNLOAD,
                                    OP_VERIFY,
                                    OP_UPLOAD,
                                    OP_ACCESS_PROTECT,
                                    OP_ACCESS_UNPROTECT,
                                    OP_ERASEPROGRAM_PROTECT,
                                    OP_ERASEPROGRAM_UNPROTECT,
                                    OP_FWCRC,
                                    OP_ENBANK3,
                                    OP_WRITESN,
                                    OP_WRITEUSERSYSTEMDATA,
                                    OP_ENSLIB,
                                    OP_DISSLIB,
                                    OP_DOWNLOADPROJECT,
                                    OP_FLASHCRC};
    for (std::size_t i = 0; i < kinds.size(); ++i)
        EXPECT_EQ(kinds[i], static_cast<int>(i));
    const std::vector<int> infos = {INFO_TYPE_INIT,  INFO_TYPE_ACTION, INFO_TYPE_CANCEL,
                                    INFO_TYPE_ABEND, INFO_TYPE_DONE,   INFO_TYPE_INFO};
    EXPECT_EQ(infos, (std::vector<int>{0, 1, 2, 3, 4, 5}));
    const std::vector<int> commands = {COMMAND_NONE, COMMAND_CONTINUE, COMMAND_CANCEL, COMMAND_ABEND, COMMAND_DONE};
    EXPECT_EQ(commands, (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ((std::vector<int>{STOP, SRART}), (std::vector<int>{0, 1}));
    EXPECT_EQ((std::vector<int>{ERASEMODE_NONE, NECESSARY, GLOBAL}), (std::vector<int>{0, 1, 2}));
}

TEST_F(COperationTest, EveryEventCarriesItsRecord) {
    Steps job(nullptr);
    static std::vector<std::pair<InfoType, void *>> seen;
    seen.clear();
    job.SetOperationInfoDelegate(reinterpret_cast<void *>(+[](InfoType type, void *record) -> void * {
        seen.emplace_back(type, record);
        return nullptr;
    }));
    const InfoType all[] = {INFO_TYPE_INIT,  INFO_TYPE_ACTION, INFO_TYPE_CANCEL,
                            INFO_TYPE_ABEND, INFO_TYPE_DONE,   INFO_TYPE_INFO};
    const std::vector<std::pair<InfoType, void *>> expected = {
        {INFO_TYPE_INIT, &job.m_InitInfo},   {INFO_TYPE_ACTION, &job.m_ActionInfo},
        {INFO_TYPE_CANCEL, &job.m_BaseInfo}, {INFO_TYPE_ABEND, &job.m_AbendInfo},
        {INFO_TYPE_DONE, &job.m_BaseInfo},   {INFO_TYPE_INFO, &job.m_strInfoStringName}};
    for (const InfoType type : all)
        job.Callback(type);
    EXPECT_EQ(seen, expected);
    seen.clear();
    job.SetSubOperation(true);
    for (const InfoType type : all)
        job.Callback(type);
    EXPECT_EQ(seen, (std::vector<std::pair<InfoType, void *>>{expected[0], expected[1], expected[5]}));
}

TEST_F(COperationTest, StopInterruptsNothing) {
    Steps job(nullptr);
    job.ChangeStatus(SRART);
    job.CallCommand(COMMAND_CONTINUE);
    job.Stop();
    EXPECT_FALSE(job.HasStart());
    EXPECT_TRUE(job.IsContinue());
}

TEST_F(COperationTest, FreeingWaitsForTheJob) {
    class Waiting : public Steps {
    public:
        Waiting(CBootLoader *control, std::future<void> signal) : Steps(control), go(std::move(signal)) {}
        int Action() override {
            go.wait();
            return Steps::Action();
        }
        std::future<void> go;
    };
    CBootLoader &control = connect(f413);
    std::promise<void> signal;
    control.m_ObOperation = new Waiting(&control, signal.get_future());
    listen(*control.m_ObOperation);
    control.m_ObOperation->Start();
    std::thread later([&] { signal.set_value(); });
    control.FreeOperation();
    later.join();
    EXPECT_EQ(control.m_ObOperation, nullptr);
    EXPECT_EQ(events.back(), "DONE");
}

TEST_F(COperationTest, FreeingRightAfterTheEndEvent) {
    CBootLoader &control = connect(f413);
    for (int i = 0; i < 100; ++i) {
        std::promise<void> ended;
        onEvent = [&](InfoType type) {
            if (type == INFO_TYPE_DONE) {
                control.m_ObOperation->SetOperationInfoDelegate(nullptr);
                ended.set_value();
            }
        };
        control.m_ObOperation = new Steps(&control);
        listen(*control.m_ObOperation);
        control.m_ObOperation->Start();
        ended.get_future().wait();
        control.FreeOperation();
    }
    EXPECT_EQ(events.size(), 400u);
}
