#pragma once

#include <atomic>
#include <string>
#include <vector>

#include <QObject>
#include <QThread>

#include "link/JobRun.h"
#include "operations/OperationTypes.h"

class CBootLoader;

// One long device job: prepare (InitAction), work in a loop (Action), finish (ActionDone), each stage
// reported to the listener. A top-level job runs on its own thread. A sub-operation runs on the
// thread of the job that owns it, reports only its start and its progress, and hands its failure to
// its owner as a return value. Results are 0 or a CResult code.
// The listener is called on the job's thread. It may call everything of the job and of the bootloader
// control, close the link and delete it: what would have to wait for the job comes back at once, and the
// job lives until it has ended. It must not delete the job or the control itself.
class COperation : public QThread {
public:
    COperation() = default;
    explicit COperation(CBootLoader *obBootLoader);
    // A job of that kind; name is the key of its display name.
    COperation(CBootLoader *obBootLoader, OP_Type kind, const std::string &name);
    // A job may be deleted once WaitUntilEnded has returned; CBootLoader::FreeOperation does both.
    ~COperation() override;

    void run() override;
    // Asks a started job to stop between two steps; without effect on one that was not started.
    virtual void Cancel();
    // The whole job on the calling thread: InitAction, Action until done, ActionDone, all events.
    virtual int Work();
    virtual int InitAction();
    // Ends by COMMAND_DONE or with a code, or Work calls it again.
    virtual int Action();
    virtual int ActionDone();
    // Sets m_ActionInfo.m_iPercent.
    virtual void CalculatePercent();
    virtual void CalculatePercent(QObject obj);
    // Copies the job's parameter record, to which the pointer points.
    virtual void SetParameters(void *p);
    // Installs the listener, an lpFunc; null removes it. Once the job runs, only its own thread may.
    virtual void SetOperationInfoDelegate(void *pFun);

    // Marks the job as owned by another one.
    void SetSubOperation(bool bSub);
    bool IsSubOperation() const;

    // Runs a sub-operation to its end and returns its result; starts the thread of a top-level job
    // and returns 0. Without a thread to be had, the job ends with UNKNOWN_ERROR on the calling one.
    // Without effect on a job that has not ended; WaitUntilEnded tells when it has.
    int Start();
    // Clears the started mark; interrupts nothing.
    void Stop();
    bool HasStart() const;
    // Returns when the job's thread, if it has one, has left the job for good; at once on that thread.
    void WaitUntilEnded();
    // Deletes the job once it has ended; at once when it does not run. Waits for nothing.
    void DeleteWhenEnded();
    // The run that WaitUntilEnded waits for.
    const JobRun &CurrentRun() const;

    void ChangeStatus(Status emStatus);
    void CallCommand(Command emCommand);
    bool IsContinue() const;
    bool IsCancel() const;
    bool IsDone() const;

    // Raises one event. A sub-operation raises neither ABEND, CANCEL nor DONE.
    void Callback(InfoType Type);

    OP_Type m_EmType = OP_ERASE;
    std::string m_strName;
    bool m_bSubOperation = false;
    std::atomic<Status> m_emStatus{STOP};
    std::atomic<Command> m_emCommand{COMMAND_NONE};
    CBootLoader *m_obBootLoader = nullptr; // not owned
    CBaseInfo m_BaseInfo;
    CInitInfo m_InitInfo;
    CActionInfo m_ActionInfo;
    CAbendInfo m_AbendInfo;
    std::string m_strInfoStringName; // with INFO_TYPE_INFO, which no job raises
    static uint crc32table[258];     // MEANT: declared only, as the host computes no CRC
    lpFunc m_lpFunc = nullptr;

protected:
    // Ends the work: the percent, and COMMAND_DONE. Returns 0.
    int done();
    // Sets bytes and percent of the progress, truncated and multiplied first. A file of no bytes is all done.
    void showBytes(uint bytes, uint fileSize);

private:
    int startThread();
    int abend(int result);
    int finish();

    JobRun m_run;
    std::vector<JobRun> m_earlierRuns; // of jobs on the same link, which come first
};
