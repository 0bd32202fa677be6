#include "operations/download/Download.h"

#include "device/Device.h"
#include "device/Families.h"
#include "files/CFiles.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/AccessProtect.h"
#include "operations/EnBank3.h"
#include "operations/EnableSlib.h"
#include "operations/Erase.h"
#include "operations/FileTitle.h"
#include "operations/Images.h"
#include "operations/Target.h"
#include "operations/WriteSN.h"
#include "operations/WriteUserSystemData.h"
#include "operations/download/SubOperations.h"
#include "operations/download/Verify.h"

CDownload::CDownload(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_DOWNLOAD, Info_Operation_Download), m_obErase(new CErase(obBootLoader)),
      m_obVerify(new CVerify(obBootLoader)), m_obWriteSN(new CWriteSN(obBootLoader)),
      m_obFAP(new CAccessProtect(obBootLoader)), m_obWriteOTP2File(new CWriteUserSystemData(obBootLoader)),
      m_obEnableSlib(new CEnableSlib(obBootLoader)), m_obEnBank3(new CEnBank3(obBootLoader)) {
    for (COperation *job : subOperations())
        job->SetSubOperation(true);
}

CDownload::~CDownload() {
    m_lsProgramFile.clear();
    delete[] m_Parameters.m_UserSystemDataArray;
    delete m_obErase;
    delete m_obVerify;
    delete m_obWriteSN;
    delete m_obFAP;
    delete m_obWriteOTP2File;
    delete m_obEnableSlib;
    delete m_obEnBank3;
}

QList<COperation *> CDownload::subOperations() const {
    return {m_obErase, m_obVerify, m_obWriteSN, m_obWriteOTP2File, m_obFAP, m_obEnableSlib, m_obEnBank3};
}

void CDownload::SetParameters(void *p) {
    m_Parameters = *static_cast<DownloadParam *>(p);
}

void CDownload::SetOperationInfoDelegate(void *pFun) {
    COperation::SetOperationInfoDelegate(pFun);
    for (COperation *job : subOperations())
        if (job)
            job->SetOperationInfoDelegate(pFun);
}

void CDownload::Cancel() {
    COperation::Cancel();
    for (COperation *job : subOperations())
        if (job)
            job->Cancel();
}

int CDownload::InitAction() {
    if (m_Parameters.m_strDownPathFile.isEmpty())
        return CResult::UNKNOWN_ERROR;
    std::string fileName;
    // MEANT: a path without "/" leaves the command unset, so the job does nothing and raises no end event.
    if (!filetitle::fileNameOf(m_Parameters.m_strDownPathFile.first(), fileName))
        return 0;
    m_strName = filetitle::withFile(CResult::GetInfoString(Info_Operation_Download), fileName);
    COperation::InitAction();
    int result = OpenFile();
    if (result == 0)
        result = ConfirmAddressOffset();
    if (result == 0)
        result = checkSectors();
    if (result != 0)
        return result;
    if (m_Parameters.m_bEnBank3) {
        result = suboperations::prepareBank3(*this);
        if (!suboperations::goesOn(*this, result))
            return result;
    }
    return prepareFlash();
}

// In every erase mode: a download that erases nothing writes all the same.
int CDownload::checkSectors() {
    // No image opens without a chip, and none is empty.
    if (!images::areCutAsErased(*m_obBootLoader->m_ObDevice))
        return CResult::PROGRAM_INPUT_PARAMS_ERROR;
    return m_obBootLoader->HasBeenEraseProgramProtect(GetNecessarySectorIndex());
}

int CDownload::prepareFlash() {
    int result = Erase(m_Parameters.m_enEraseMode);
    if (result == 0 && m_Parameters.m_bEnableSlib) {
        result = EnableSlib(m_Parameters.m_uiPassword, m_Parameters.m_usStartSector, m_Parameters.m_usStartDataSector,
                            m_Parameters.m_usEndSector);
        if (result == 0 && IsCancel())
            ResetMcuAfterEnableSlib();
    }
    return result;
}

int CDownload::Action() {
    for (int i = 0; i < m_lsProgramFile.size(); ++i) {
        CProgramFile *file = m_lsProgramFile.at(i);
        // MEANT: without a "/" the command stays, so Work calls again from the first file.
        if (i > 0 && !announce(*file))
            return 0;
        int result = Download(m_uiAddressOffset.at(i), file);
        if (result != 0 || IsCancel()) {
            ResetMcuAfterEnableSlib();
            return result;
        }
        result = restartFirst403();
        if (result != 0)
            return result;
        if (m_Parameters.m_bVerify) {
            result = Verify(m_uiAddressOffset.at(i), file);
            if (result != 0 || IsCancel()) {
                ResetMcuAfterEnableSlib();
                return result;
            }
        }
    }
    CallCommand(COMMAND_DONE);
    return 0;
}

bool CDownload::announce(const CProgramFile &file) {
    m_InitInfo.m_strFilePath = file.m_StrPath;
    m_InitInfo.m_uiFileSize = file.m_UiFileSize;
    std::string fileName;
    if (!filetitle::fileNameOf(file.m_StrPath, fileName))
        return false;
    m_InitInfo.m_strName = filetitle::withFile(CResult::GetInfoString(Info_Operation_Download), fileName);
    Callback(INFO_TYPE_INIT);
    return true;
}

// The first two families read back what they hold only after a restart, which switches SPIM off.
int CDownload::restartFirst403() {
    if (!target::familyOf(m_obBootLoader).has(restartsBeforeVerify))
        return 0;
    const int result = ResetMcu403B();
    return result == 0 && m_Parameters.m_bEnBank3 ? EnBank3() : result;
}

int CDownload::Download(uint uiAddressOffset, CProgramFile *tmpProgramFile) {
    const int elements = tmpProgramFile->GetElementCount();
    for (int i = 0; i < elements; ++i) {
        const PIMAGEELEMENT element = tmpProgramFile->GetElement();
        if (!element)
            continue;
        const int status =
            ZVBL_DNLOAD(m_obBootLoader->m_handle, static_cast<uint>(element->dwAddress) + uiAddressOffset,
                        element->Data, static_cast<uint>(element->dwDataLength), m_Parameters.m_bOptimize ? 1 : 0);
        if (status != 0)
            return CResult::Convert(status);
        CalculatePercent(tmpProgramFile);
        Callback(INFO_TYPE_ACTION);
        if (IsCancel())
            return 0;
    }
    return 0;
}

void CDownload::CalculatePercent(CProgramFile *pFile) {
    showBytes(pFile->m_uiFileStatus, pFile->m_UiFileSize);
}

int CDownload::ActionDone() {
    int result = 0;
    if (!suboperations::finishDownload(*this, result)) {
        ResetMcuAfterEnableSlib();
        return result;
    }
    if (m_Parameters.m_bJump)
        return JumpToUserProgram(m_uiAddressOffset.first());
    return m_Parameters.m_bEnableSlib ? ResetMcu() : 0;
}
