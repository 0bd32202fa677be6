#include "operations/download/Verify.h"

#include "files/CFiles.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/FileTitle.h"
#include "operations/VerifyResult.h"

CVerify::CVerify(CBootLoader *obBootLoader) : COperation(obBootLoader, OP_VERIFY, Info_Operation_Verify) {}

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
    if (!filetitle::fileNameOf(m_obProgramFile->m_StrPath, fileName))
        return 0;
    m_strName = filetitle::withFile(CResult::GetInfoString(Info_Operation_Verify), fileName);
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
        return verifyResult(status);
    CalculatePercent();
    return 0;
}

void CVerify::CalculatePercent() {
    showBytes(m_obProgramFile->m_uiFileStatus, m_obProgramFile->m_UiFileSize);
}
