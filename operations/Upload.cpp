#include "operations/Upload.h"

#include "files/CFiles.h"
#include "foundation/PathText.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/Target.h"

CUpload::CUpload(CBootLoader *obBootLoader) : COperation(obBootLoader, OP_UPLOAD, Info_Operation_Upload) {}

CUpload::~CUpload() {
    delete m_obProgramFile;
}

void CUpload::SetParameters(void *p) {
    m_Parameters = *static_cast<UploadParam *>(p);
}

int CUpload::InitAction() {
    COperation::InitAction();
    if (!m_obProgramFile)
        m_obProgramFile = new CProgramFile;
    m_obProgramFile->SetSectorIndexsForCreate(m_Parameters.m_aSectorIndexs, m_Parameters.m_aSectorIndexs.size());
    m_obProgramFile->SetBank3SizeForCreate(m_Parameters.m_bank3Size);
    const int result = m_obProgramFile->Create(target::deviceOf(m_obBootLoader));
    if (result != 0)
        return result;
    m_InitInfo.m_strFilePath = pathOf(m_Parameters.m_strUploadPathFile);
    m_InitInfo.m_uiFileSize = m_obProgramFile->m_UiFileSize;
    return 0;
}

int CUpload::Action() {
    const PIMAGEELEMENT element = m_obProgramFile->GetElement();
    if (!element) {
        const int result = m_obProgramFile->Save(pathOf(m_Parameters.m_strUploadPathFile));
        if (result == 0)
            CallCommand(COMMAND_DONE);
        return result;
    }
    const int status = ZVBL_UPLOAD(m_obBootLoader->m_handle, static_cast<uint>(element->dwAddress), element->Data,
                                   static_cast<uint>(element->dwDataLength));
    if (status != 0)
        return CResult::Convert(status);
    const int result = m_obProgramFile->SetElement();
    if (result == 0)
        CalculatePercent();
    return result;
}

void CUpload::CalculatePercent() {
    showBytes(m_obProgramFile->m_uiFileStatus, m_obProgramFile->m_UiFileSize);
}
