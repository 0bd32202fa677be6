#include "app/Progress.h"

#include <algorithm>
#include <condition_variable>
#include <iostream>
#include <iterator>
#include <mutex>

#include "app/Report.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

// Guard the two job flags and the link of the running job.
std::mutex jobMutex;
std::condition_variable jobEnded;

struct JobText {
    OP_Type type;
    const char *text;
};

// A job that is missing here prints the text of an unknown error; the project download has no title of its own.
const JobText titles[] = {
    {OP_ERASE, Info_Operation_Erase},
    {OP_DOWNLOAD, Info_Operation_Download},
    {OP_VERIFY, Info_Operation_Verify},
    {OP_UPLOAD, Info_Operation_Upload},
    {OP_ACCESS_PROTECT, Info_Operation_FAP_E},
    {OP_ACCESS_UNPROTECT, Info_Operation_FAP_D},
    {OP_ERASEPROGRAM_PROTECT, Info_Operation_EPP_E},
    {OP_ERASEPROGRAM_UNPROTECT, Info_Operation_EPP_D},
    {OP_FWCRC, Info_Operation_FWCRC},
    {OP_ENBANK3, Info_Operation_ENBANK3},
    {OP_WRITESN, Info_Operation_WRITESN},
    {OP_WRITEUSERSYSTEMDATA, Info_Operation_WRITEUSERSYSTEMDATA},
    {OP_ENSLIB, Info_Operation_EnableSlib},
    {OP_DISSLIB, Info_Operation_DisableSlib},
    {OP_FLASHCRC, Info_Operation_FlashCRC},
};

const JobText successTexts[] = {
    {OP_ERASE, Info_Erase_Operation_Success},
    {OP_DOWNLOAD, Info_Download_Operation_Success},
    {OP_UPLOAD, Info_Upload_Operation_Success},
    {OP_ACCESS_PROTECT, Info_EnableRP_Operation_Success},
    {OP_ACCESS_UNPROTECT, Info_DisableRP_Operation_Success},
    {OP_ERASEPROGRAM_PROTECT, Info_EnableWP_Operation_Success},
    {OP_ERASEPROGRAM_UNPROTECT, Info_DisableWP_Operation_Success},
    {OP_FWCRC, Info_FWCRC_Operation_Success},
};

template <std::size_t count>
std::string textOf(OP_Type type, const JobText (&table)[count], const char *otherText) {
    const auto row = std::find_if(std::begin(table), std::end(table),
                                  [type](const JobText &candidate) { return candidate.type == type; });
    return CResult::GetInfoString(row == std::end(table) ? otherText : row->text);
}

bool hasFile(OP_Type type) {
    return type == OP_DOWNLOAD || type == OP_VERIFY || type == OP_UPLOAD;
}

bool hasPercent(OP_Type type) {
    return type == OP_ERASE || hasFile(type);
}

void printInit(const CInitInfo &info) {
    printLine(GetOperatioStringName(info.m_emType));
    if (hasFile(info.m_emType))
        printLine(info.m_strFilePath + "     " + std::to_string(info.m_uiFileSize) + "B");
    if (!hasPercent(info.m_emType))
        printLine(CResult::GetInfoString(Info_Progress_Running));
    g_shareParameter.c_operationPersent = 0;
}

void printPercent(const CActionInfo &info) {
    if (!hasPercent(info.m_emType) || info.m_iPercent == g_shareParameter.c_operationPersent)
        return;
    std::cout << "\r" << CResult::GetInfoString(Info_Progress_Running) << info.m_iPercent << "%" << std::flush;
    if (info.m_iPercent == 100)
        printLine("");
    g_shareParameter.c_operationPersent = info.m_iPercent;
}

void endInFailure(const std::string &text) {
    printLine(text);
    g_shareParameter.c_OperationSucceedFlag = false; // ahead of Stop, which wakes the waiting thread
    Stop();
}

COperation *jobOf(const CCom *obCCom) {
    return obCCom->m_ObBootLoader->m_ObOperation;
}

} // namespace

std::string GetOperatioStringName(OP_Type type) {
    return textOf(type, titles, Info_UnknownError);
}

void *GetOperationInfo(InfoType Type, void *ob) {
    switch (Type) {
    case INFO_TYPE_INIT: printInit(*static_cast<const CInitInfo *>(ob)); break;
    case INFO_TYPE_ACTION: printPercent(*static_cast<const CActionInfo *>(ob)); break;
    case INFO_TYPE_CANCEL: endInFailure(CResult::GetInfoString(Info_Progress_Operation_Cancel)); break;
    case INFO_TYPE_ABEND:
        printLine(""); // closes a percent line that may be open
        endInFailure(
            CResult::GetInfoString(CResult::GetInfoStringName(static_cast<const CAbendInfo *>(ob)->m_iResult)));
        break;
    case INFO_TYPE_DONE:
        printLine(textOf(static_cast<const CBaseInfo *>(ob)->m_emType, successTexts, Info_Progress_Operation_Success));
        Stop();
        break;
    case INFO_TYPE_INFO: break;
    }
    return nullptr;
}

void Start(CCom *obCCom) {
    COperation *job = jobOf(obCCom);
    {
        // Before the job runs, as its end looks for the link.
        const std::lock_guard<std::mutex> lock(jobMutex);
        g_shareParameter.c_obCCom = obCCom;
    }
    if (job != nullptr) {
        job->SetOperationInfoDelegate(reinterpret_cast<void *>(&GetOperationInfo));
        job->Start();
    }
}

void Stop() {
    // All under the lock: once the waiting thread goes on, it may replace the job.
    const std::lock_guard<std::mutex> lock(jobMutex);
    g_shareParameter.c_OperationFlag = false;
    const CCom *obCCom = g_shareParameter.c_obCCom;
    if (obCCom != nullptr && obCCom->m_ObBootLoader != nullptr && jobOf(obCCom) != nullptr)
        jobOf(obCCom)->SetOperationInfoDelegate(nullptr);
    jobEnded.notify_all();
}

bool runJob(CCom *obCCom) {
    if (jobOf(obCCom) == nullptr)
        return false; // nothing would end the wait
    {
        // Up before the job starts, so that an early end is not overwritten.
        const std::lock_guard<std::mutex> lock(jobMutex);
        g_shareParameter.c_OperationFlag = true;
        g_shareParameter.c_OperationSucceedFlag = true;
    }
    Start(obCCom);
    {
        std::unique_lock<std::mutex> lock(jobMutex);
        jobEnded.wait(lock, [] { return !g_shareParameter.c_OperationFlag; });
    }
    jobOf(obCCom)->WaitUntilEnded();
    return g_shareParameter.c_OperationSucceedFlag;
}
