#include "operations/Verify.h"

#include "files/CFiles.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/JobSteps.h"

CVerify::CVerify(CBootLoader *obBootLoader) : COperation(obBootLoader) {
    m_EmType = OP_VERIFY;
    m_strName = CResult::GetInfoString(Info_Operation_Verify);
}

CVerify::~CVerify() {
    delete m_obProgramFile;
}

void CVerify::SetParameters(void *) {}

void CVerify::SetVerifyFile(CProgramFile *obProgramFile) {
    m_obProgramFile = obProgramFile;
}

void CVerify::SetAddressOffset(uint uiAddressOffset) {
    m_uiAddressOffset = uiAddressOffset;
}

int CVerify::InitAction() {
    if (!m_obProgramFile)
        return CResult::UNKNOWN_ERROR;
    std::string fileName;
    // MEANT: a path without "/" leaves the command as the last run left it.
    if (!jobsteps::fileNameOf(m_obProgramFile->m_StrPath, fileName))
        return 0;
    m_strName = jobsteps::titleWithFile(CResult::GetInfoString(Info_Operation_Verify), fileName);
    COperation::InitAction();
    m_obProgramFile->ResetElement();
    m_InitInfo.m_strFilePath = m_obProgramFile->m_StrPath;
    m_InitInfo.m_uiFileSize = m_obProgramFile->m_UiFileSize;
    return 0;
}

int CVerify::Action() {
    if (!m_obProgramFile)
        return CResult::UNKNOWN_ERROR;
    const PIMAGEELEMENT element = m_obProgramFile->GetElement();
    if (!element) {
        CallCommand(COMMAND_DONE);
        return 0;
    }
    const BYTE status =
        ZVBL_VERIFY(m_obBootLoader->m_handle, static_cast<uint>(element->dwAddress) + m_uiAddressOffset, element->Data,
                    static_cast<uint>(element->dwDataLength), m_obProgramFile->m_bOptimize ? 1 : 0);
    if (status != 0)
        return jobsteps::verifyResult(status);
    CalculatePercent();
    return 0;
}

void CVerify::CalculatePercent() {
    m_ActionInfo.m_uiFileStatus = m_obProgramFile->m_uiFileStatus;
    m_ActionInfo.m_iPercent = jobsteps::percentOf(m_obProgramFile->m_uiFileStatus, m_obProgramFile->m_UiFileSize);
}
