#include "operations/download/DownloadProject.h"

#include <algorithm>

#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/AccessProtect.h"
#include "operations/AccessUnProtect.h"
#include "operations/DisableSlib.h"
#include "operations/EnBank3.h"
#include "operations/EnableSlib.h"
#include "operations/Erase.h"
#include "operations/FileTitle.h"
#include "operations/Target.h"
#include "operations/WriteSN.h"
#include "operations/WriteUserSystemData.h"
#include "operations/download/ProjectParts.h"
#include "operations/download/SubOperations.h"
#include "operations/download/VerifyProject.h"

CDownloadProject::CDownloadProject(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_DOWNLOAD, Info_Operation_Download), m_obErase(new CErase(obBootLoader)),
      m_obVerify(new CVerifyProject(obBootLoader)), m_obWriteSN(new CWriteSN(obBootLoader)),
      m_obFAP(new CAccessProtect(obBootLoader)), m_obRDUP(new CAccessUnProtect(obBootLoader)),
      m_obWriteOTP2File(new CWriteUserSystemData(obBootLoader)), m_obEnBank3(new CEnBank3(obBootLoader)),
      m_obEnableSlib(new CEnableSlib(obBootLoader)), m_obDisableSlib(new CDisableSlib(obBootLoader)) {
    for (COperation *job : subOperations())
        job->SetSubOperation(true);
}

CDownloadProject::~CDownloadProject() {
    qDeleteAll(subOperations());
}

QList<COperation *> CDownloadProject::subOperations() const {
    return {m_obRDUP, m_obErase,   m_obVerify,     m_obWriteSN,    m_obWriteOTP2File,
            m_obFAP,  m_obEnBank3, m_obEnableSlib, m_obDisableSlib};
}

void CDownloadProject::SetParameters(void *p) {
    m_Parameters = *static_cast<DLPROJECTParam *>(p);
}

void CDownloadProject::SetOperationInfoDelegate() {}

void CDownloadProject::Cancel() {
    COperation::Cancel();
    for (COperation *job : subOperations())
        if (job)
            job->Cancel();
}

int CDownloadProject::InitAction() {
    int result = checkRecord();
    if (result != 0)
        return result;
    const SFileInfo &first = m_Parameters.m_DownFileInfo.first();
    m_strName = filetitle::withFile(CResult::GetInfoString(Info_Operation_Download), first.LoadFileType);
    COperation::InitAction();
    m_InitInfo.m_strFilePath = first.FilePath;
    m_InitInfo.m_uiFileSize = static_cast<uint>(first.FileSize);
    if (!prepare(result))
        return result;
    result = Erase(m_Parameters.m_enEraseMode);
    if (result != 0)
        return result;
    if (m_Parameters.m_bEnableSlib) {
        result = EnableSlib(m_Parameters.m_uiEnablePassword, m_Parameters.m_usStartSector,
                            m_Parameters.m_usStartDataSector, m_Parameters.m_usEndSector);
        if (!suboperations::goesOn(*this, result))
            return result;
    }
    m_hasGetEraseProgramProtectStatus = false;
    return 0;
}

int CDownloadProject::checkRecord() const {
    if (m_Parameters.m_DownFileInfo.isEmpty() || !target::deviceOf(m_obBootLoader))
        return CResult::UNKNOWN_ERROR;
    for (const SFileInfo &file : m_Parameters.m_DownFileInfo)
        if (!std::all_of(file.partInfo.begin(), file.partInfo.end(), projectparts::isWhole))
            return CResult::PROGRAM_INPUT_PARAMS_ERROR;
    return 0;
}

// Takes away what stands in the way of the download, and refuses what may not be taken away. False after
// the step that failed or was cancelled.
bool CDownloadProject::prepare(int &result) {
    const auto step = [&](int code) { return suboperations::goesOn(*this, result = code); };
    result = 0;
    if (m_Parameters.m_bRDUP && !step(RDUP()))
        return false;
    if (m_Parameters.m_bDisableSlib && !step(DisableSlib(m_Parameters.m_uiDisablePassword)))
        return false;
    // The families without an sLib area do not know the question.
    if (m_obBootLoader->m_pCmds->GET_SLIB_STATUS_CMD == 1)
        result = DownloadFileInSlibCheck();
    if (result != 0)
        return false;
    return !m_Parameters.m_bEnBank3 || step(suboperations::prepareBank3(*this));
}

int CDownloadProject::Action() {
    // MEANT: the check comes after the erase.
    const int checked = checkSectors();
    if (checked != 0)
        return checked;
    for (int i = 0; i < m_Parameters.m_DownFileInfo.size(); ++i) {
        const SFileInfo &file = m_Parameters.m_DownFileInfo.at(i);
        if (i > 0) {
            describe(file);
            Callback(INFO_TYPE_INIT);
        }
        int result = Download(file);
        if (result == 0 && !IsCancel() && m_Parameters.m_bVerify)
            result = Verify(file);
        if (result != 0 || IsCancel())
            return result;
    }
    CallCommand(COMMAND_DONE);
    return 0;
}

int CDownloadProject::checkSectors() {
    if (m_hasGetEraseProgramProtectStatus)
        return 0;
    if (m_obBootLoader) {
        const QList<int> sectors = GetNecessarySectorIndex();
        const int result =
            sectors.isEmpty() ? CResult::UNKNOWN_ERROR : m_obBootLoader->HasBeenEraseProgramProtect(sectors);
        if (result != 0)
            return result;
    }
    m_hasGetEraseProgramProtectStatus = true;
    return 0;
}

void CDownloadProject::describe(const SFileInfo &file) {
    m_InitInfo.m_strFilePath = file.FilePath;
    m_InitInfo.m_uiFileSize = static_cast<uint>(file.FileSize);
    m_InitInfo.m_strName = filetitle::withFile(CResult::GetInfoString(Info_Operation_Download), file.LoadFileType);
}

int CDownloadProject::Download(SFileInfo tmpProgramFile) {
    m_TempDownlaodFileSize = static_cast<uint>(tmpProgramFile.FileSize);
    m_TempDownlaodedFileSize = 0;
    const QList<HEXFILEPARTINFO> &parts = tmpProgramFile.partInfo;
    for (const HEXFILEPARTINFO &part : parts) {
        const int result = downloadPart(part);
        if (result != 0 || IsCancel())
            return result;
    }
    return 0;
}

int CDownloadProject::downloadPart(const HEXFILEPARTINFO &part) {
    BYTE chunk[projectparts::chunkSize];
    for (uint offset = 0; offset < part.PartSize; offset += projectparts::chunkSize) {
        const uint length = projectparts::copyChunk(part, offset, chunk);
        const int status = ZVBL_DNLOAD(m_obBootLoader->m_handle, part.PartStartAddress + offset, chunk, length,
                                       m_Parameters.m_bOptimize ? 1 : 0);
        if (status != 0)
            return CResult::Convert(status);
        CalculatePercent(static_cast<int>(length));
        Callback(INFO_TYPE_ACTION);
        if (IsCancel())
            return 0;
    }
    return 0;
}

void CDownloadProject::CalculatePercent(int size) {
    m_TempDownlaodedFileSize += static_cast<uint>(size);
    showBytes(m_TempDownlaodedFileSize, m_TempDownlaodFileSize);
}

int CDownloadProject::ActionDone() {
    m_hasGetEraseProgramProtectStatus = false;
    int result = 0;
    if (!suboperations::finishDownload(*this, result))
        return result;
    if (m_Parameters.m_bJump)
        return JumpToUserProgram();
    return m_Parameters.m_bEnableSlib ? ResetMcu() : 0;
}
