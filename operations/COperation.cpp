#include "operations/COperation.h"

#include "foundation/Result.h"
#include "link/BootLoader.h"

COperation::COperation(CBootLoader *obBootLoader) : m_obBootLoader(obBootLoader) {
    if (obBootLoader)
        m_earlierRuns = obBootLoader->RunsToEnd();
}

COperation::~COperation() {
    WaitUntilEnded();
}

COperation::COperation(CBootLoader *obBootLoader, OP_Type kind, const std::string &name) : COperation(obBootLoader) {
    m_EmType = kind;
    m_strName = CResult::GetInfoString(name);
}

void COperation::run() {
    m_run.watchThisThread();
    for (const JobRun &earlier : m_earlierRuns)
        earlier.wait();
    Work();
}

int COperation::Start() {
    if (!m_run.claim())
        return 0;
    ChangeStatus(SRART);
    if (!IsSubOperation())
        return startThread();
    m_run.enter();
    const int result = Work();
    m_run.release();
    return result;
}

int COperation::startThread() {
    start(QThread::InheritPriority);
    const bool isMade = isRunning() || isFinished();
    if (isMade) {
        m_run.leftToTheThread();
        return 0;
    }
    m_run.enter();
    abend(CResult::UNKNOWN_ERROR);
    m_run.release();
    return 0;
}

int COperation::Work() {
    int result = InitAction();
    if (result != 0)
        return abend(result);
    Callback(INFO_TYPE_INIT);
    Callback(INFO_TYPE_ACTION);
    while (IsContinue()) {
        result = Action();
        if (result != 0)
            return abend(result);
        Callback(INFO_TYPE_ACTION);
    }
    return finish();
}

int COperation::finish() {
    if (IsCancel()) {
        Callback(INFO_TYPE_CANCEL);
    } else if (IsDone()) {
        const int result = ActionDone();
        if (result != 0)
            return abend(result);
        Callback(IsCancel() ? INFO_TYPE_CANCEL : INFO_TYPE_DONE);
    }
    // MEANT: a job that neither was cancelled nor is done ends without an end event.
    Stop();
    return 0;
}

int COperation::abend(int result) {
    m_AbendInfo.m_iResult = result;
    Callback(INFO_TYPE_ABEND);
    Stop();
    return result;
}

int COperation::InitAction() {
    const quintptr handle = m_obBootLoader ? reinterpret_cast<quintptr>(m_obBootLoader->m_handle) : 0;
    const int portTag = static_cast<int>(static_cast<quint32>(handle));
    m_BaseInfo.m_nPortNum = portTag;
    m_BaseInfo.m_emType = m_EmType;
    m_InitInfo = CInitInfo{portTag, m_EmType, m_strName, m_bSubOperation, std::string(), 0};
    m_ActionInfo = CActionInfo{portTag, 0, 0, m_EmType};
    m_AbendInfo.m_nPortNum = portTag;
    CallCommand(COMMAND_CONTINUE);
    return 0;
}

int COperation::Action() {
    return 0;
}

int COperation::ActionDone() {
    return 0;
}

void COperation::CalculatePercent() {
    m_ActionInfo.m_iPercent = 100;
}

void COperation::CalculatePercent(QObject) {
    m_ActionInfo.m_iPercent = 100;
}

int COperation::done() {
    CalculatePercent();
    CallCommand(COMMAND_DONE);
    return 0;
}

void COperation::showBytes(uint bytes, uint fileSize) {
    m_ActionInfo.m_uiFileStatus = bytes;
    m_ActionInfo.m_iPercent =
        fileSize == 0 ? 100 : static_cast<int>(100.0 * static_cast<double>(bytes) / static_cast<double>(fileSize));
}

void COperation::SetParameters(void *) {}

void COperation::SetOperationInfoDelegate(void *pFun) {
    m_lpFunc = reinterpret_cast<lpFunc>(pFun);
}

void COperation::SetSubOperation(bool bSub) {
    m_bSubOperation = bSub;
}

bool COperation::IsSubOperation() const {
    return m_bSubOperation;
}

void COperation::Cancel() {
    if (HasStart())
        CallCommand(COMMAND_CANCEL);
}

void COperation::Stop() {
    ChangeStatus(STOP);
}

bool COperation::HasStart() const {
    return m_emStatus == SRART;
}

void COperation::WaitUntilEnded() {
    m_run.wait();
}

void COperation::DeleteWhenEnded() {
    m_run.atEnd([this] { delete this; });
}

const JobRun &COperation::CurrentRun() const {
    return m_run;
}

void COperation::ChangeStatus(Status emStatus) {
    m_emStatus = emStatus;
}

void COperation::CallCommand(Command emCommand) {
    m_emCommand = emCommand;
}

bool COperation::IsContinue() const {
    return m_emCommand == COMMAND_CONTINUE;
}

bool COperation::IsCancel() const {
    return m_emCommand == COMMAND_CANCEL;
}

bool COperation::IsDone() const {
    return m_emCommand == COMMAND_DONE;
}

void COperation::Callback(InfoType Type) {
    if (!m_lpFunc)
        return;
    // Only the top-level job ends the wait of its listener.
    const bool mayEnd = !IsSubOperation();
    switch (Type) {
    case INFO_TYPE_INIT: m_lpFunc(Type, &m_InitInfo); break;
    case INFO_TYPE_ACTION: m_lpFunc(Type, &m_ActionInfo); break;
    case INFO_TYPE_INFO: m_lpFunc(Type, &m_strInfoStringName); break;
    case INFO_TYPE_ABEND:
        if (mayEnd)
            m_lpFunc(Type, &m_AbendInfo);
        break;
    case INFO_TYPE_CANCEL:
    case INFO_TYPE_DONE:
        if (mayEnd)
            m_lpFunc(Type, &m_BaseInfo);
        break;
    }
}
