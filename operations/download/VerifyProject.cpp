#include "operations/download/VerifyProject.h"

#include <cctype>

#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/FileTitle.h"
#include "operations/VerifyResult.h"
#include "operations/download/ProjectParts.h"

CVerifyProject::CVerifyProject(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_VERIFY, Info_Operation_Verify) {}

void CVerifyProject::SetVerifyFile(SFileInfo obProgramFile) {
    m_obProgramFile = obProgramFile;
}

void CVerifyProject::SetVerifyOptimize(bool bOptimize) {
    m_bOptimize = bOptimize;
}

int CVerifyProject::InitAction() {
    m_strName = filetitle::withFile(CResult::GetInfoString(Info_Operation_Verify), m_obProgramFile.LoadFileType);
    COperation::InitAction();
    m_InitInfo.m_strFilePath = m_obProgramFile.FilePath;
    m_InitInfo.m_uiFileSize = static_cast<uint>(m_obProgramFile.FileSize);
    return 0;
}

int CVerifyProject::Action() {
    const QList<HEXFILEPARTINFO> &parts = m_obProgramFile.partInfo;
    if (parts.isEmpty() || !m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    m_TempDownlaodFileSize = static_cast<uint>(m_obProgramFile.FileSize);
    m_TempDownlaodedFileSize = 0;
    for (int i = 0; i < parts.size(); ++i) {
        const int result = verifyPart(parts.at(i), parts.at(i).PartStartAddress + addressOffset(i));
        if (result != 0 || IsCancel())
            return result;
    }
    CallCommand(COMMAND_DONE);
    return 0;
}

// MEANT: only the character at the part's own position is folded, so a lower-case suffix does not
// count, and the download of such a file has no offset at all.
uint CVerifyProject::addressOffset(int partNumber) const {
    std::string type = m_obProgramFile.LoadFileType;
    const auto position = static_cast<std::size_t>(partNumber);
    if (position < type.size())
        type[position] = static_cast<char>(std::toupper(static_cast<unsigned char>(type[position])));
    const bool isBinary = type.size() >= 3 && type.compare(type.size() - 3, 3, "BIN") == 0;
    return isBinary ? m_obProgramFile.StartAddress : 0;
}

int CVerifyProject::verifyPart(const HEXFILEPARTINFO &part, uint address) {
    if (!projectparts::isWhole(part))
        return CResult::PROGRAM_INPUT_PARAMS_ERROR;
    BYTE chunk[projectparts::chunkSize];
    for (uint offset = 0; offset < part.PartSize; offset += projectparts::chunkSize) {
        const uint length = projectparts::copyChunk(part, offset, chunk);
        const BYTE status = ZVBL_VERIFY(m_obBootLoader->m_handle, address + offset, chunk, length, m_bOptimize ? 1 : 0);
        if (status != 0)
            return verifyResult(status);
        CalculatePercent(static_cast<int>(length));
        Callback(INFO_TYPE_ACTION);
        if (IsCancel())
            return 0;
    }
    return 0;
}

void CVerifyProject::CalculatePercent(int size) {
    m_TempDownlaodedFileSize += static_cast<uint>(size);
    showBytes(m_TempDownlaodedFileSize, m_TempDownlaodFileSize);
}
