#include "operations/FWCRC.h"

#include "device/Device.h"
#include "device/Families.h"
#include "files/TouchedSectors.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "foundation/ShareParameter.h"
#include "operations/FileTitle.h"
#include "operations/Images.h"
#include "operations/Target.h"

CFWCRC::CFWCRC(CBootLoader *obBootLoader) : COperation(obBootLoader, OP_FWCRC, Info_Operation_FWCRC) {}

void CFWCRC::SetParameters(void *p) {
    m_Parameters = *static_cast<FWCRCParam *>(p);
}

int CFWCRC::InitAction() {
    if (m_Parameters.m_strDownPathFile.isEmpty())
        return CResult::UNKNOWN_ERROR;
    std::string fileName;
    // MEANT: a path without "/" ends the preparation before anything is opened.
    if (!filetitle::fileNameOf(m_Parameters.m_strDownPathFile.first(), fileName))
        return 0;
    m_strName = filetitle::withFile(CResult::GetInfoString(Info_Operation_FWCRC), fileName);
    COperation::InitAction();
    const int result = OpenFile();
    return result != 0 ? result : ConfirmAddressOffset();
}

int CFWCRC::OpenFile() {
    m_obProgramFile.clear();
    for (const std::string &path : m_Parameters.m_strDownPathFile) {
        CProgramFile file;
        file.SetOptimizeForOpen(false);
        const int result = images::open(file, path, target::deviceOf(m_obBootLoader));
        if (result != 0)
            return result;
        m_obProgramFile.append(file);
    }
    if (!m_obProgramFile.isEmpty()) {
        m_InitInfo.m_strFilePath = m_obProgramFile.first().m_StrPath;
        m_InitInfo.m_uiFileSize = m_obProgramFile.first().m_UiFileSize;
    }
    return 0;
}

int CFWCRC::ConfirmAddressOffset() {
    if (m_obProgramFile.isEmpty())
        return CResult::UNKNOWN_ERROR;
    m_uiAddressOffset.clear();
    for (int i = 0; i < m_obProgramFile.size(); ++i) {
        uint offset = 0;
        const int result = addressOffset(m_obProgramFile[i], m_Parameters.m_uiStartAddress.value(i), offset);
        if (result != 0)
            return result;
        m_uiAddressOffset.append(offset);
    }
    return 0;
}

int CFWCRC::Action() {
    const bool first403 = target::familyOf(m_obBootLoader).has(firstFirmwareCrc);
    for (int i = 0; i < m_obProgramFile.size(); ++i) {
        if (i > 0) {
            m_InitInfo.m_strFilePath = m_obProgramFile.at(i).m_StrPath;
            m_InitInfo.m_uiFileSize = m_obProgramFile.at(i).m_UiFileSize;
            std::string fileName;
            // MEANT: the command stays, so Work calls again from the first file.
            if (!filetitle::fileNameOf(m_obProgramFile.at(i).m_StrPath, fileName))
                return 0;
            m_strName = filetitle::withFile(CResult::GetInfoString(Info_Operation_FWCRC), fileName);
            m_InitInfo.m_strName = m_strName;
            Callback(INFO_TYPE_INIT);
        }
        const uint offset = m_uiAddressOffset.at(i);
        const int result =
            first403 ? GetFWCRCCode(m_obProgramFile.at(i), offset) : GetFWCRCCode_413(m_obProgramFile.at(i), offset);
        if (result != 0 || IsCancel())
            return result;
    }
    CallCommand(COMMAND_DONE);
    return 0;
}

int CFWCRC::GetFWCRCCode(CProgramFile tmpProgramFile, uint) {
    if (tmpProgramFile.GetElementCount() == 0)
        return CResult::FILES_EMPTY;
    m_iAllElementNum = tmpProgramFile.GetElementCount();
    m_iCurrentElementNum = 0;
    m_iCurrentSzie = 0;
    return 0;
}

int CFWCRC::GetFWCRCCode_413(CProgramFile tmpProgramFile, uint uiAddressOffset) {
    const int result = GetFWCRCCode(tmpProgramFile, uiAddressOffset);
    if (result != 0)
        return result;
    uint startAddress = 0;
    tmpProgramFile.GetStartAddress(&startAddress); // MEANT: nothing uses it
    tmpProgramFile.ResetElement();
    return 0;
}

uint CFWCRC::GetLoadFileCRCCode(QList<unsigned char>, int) {
    return 0xFFFFFFFF;
}

uint CFWCRC::GetLoadFileCRCCode_413(QList<unsigned char>, int) {
    return 0;
}

void CFWCRC::CalculatePercent() {
    if (m_iAllElementNum == 0) {
        m_ActionInfo.m_iPercent = 100;
        return;
    }
    m_ActionInfo.m_iPercent =
        static_cast<int>(static_cast<double>(m_iCurrentElementNum) / static_cast<double>(m_iAllElementNum) * 100);
    m_ActionInfo.m_uiFileStatus = m_iCurrentSzie;
}
