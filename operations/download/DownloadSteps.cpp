#include "device/Device.h"
#include "device/Families.h"
#include "files/CFiles.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "operations/EnableSlib.h"
#include "operations/Erase.h"
#include "operations/Target.h"
#include "operations/WriteSN.h"
#include "operations/download/Download.h"
#include "operations/download/SubOperations.h"
#include "operations/download/Verify.h"

// The single steps of a download: its sub-operations, each with its record, and the restarts.

int CDownload::Erase(EraseMode enEraseMode) {
    if (!m_obErase)
        return CResult::UNKNOWN_ERROR;
    if (enEraseMode == ERASEMODE_NONE)
        return 0;
    int result = 0;
    if (enEraseMode == NECESSARY) {
        const bool hasBlocks = target::familyOf(m_obBootLoader).eraseBlock != 0;
        result = hasBlocks ? SetEraseBlockNecessary() : SetEraseNecessary();
    } else {
        EraseParam wholeDevice;
        m_obErase->SetParameters(&wholeDevice);
    }
    return result != 0 ? result : m_obErase->Start();
}

int CDownload::SetEraseNecessary() {
    EraseParam record;
    record.m_iSectorIndex = GetNecessarySectorIndex();
    if (record.m_iSectorIndex.isEmpty() || !m_obErase)
        return CResult::UNKNOWN_ERROR;
    m_obErase->SetParameters(&record);
    return 0;
}

// MEANT: the lists of GetNecessaryBlockIndexAndSectorIndex go by value and stay empty, so there is never a block to
// erase. The two families that come here are programmed after an erase step, without one of their own.
int CDownload::SetEraseBlockNecessary() {
    return CResult::UNKNOWN_ERROR;
}

int CDownload::Verify(uint uiAddressOffset, CProgramFile *tmpProgramFile) {
    if (!m_obVerify)
        return CResult::UNKNOWN_ERROR;
    m_obVerify->SetVerifyFile(tmpProgramFile);
    m_obVerify->SetAddressOffset(uiAddressOffset);
    return m_obVerify->Start();
}

int CDownload::WriteSN(uint uiSNAddress, uint uiSNNumber, uint uiSNStep) {
    WriteSN_Param record{uiSNAddress, uiSNNumber, uiSNStep};
    const int result = suboperations::writeSerialNumber(m_obWriteSN, record);
    m_Parameters.m_uiSNNumber = record.m_uiSNNumber;
    return result;
}

int CDownload::ApplyUserSystemData(BYTE *strUserSystemData, quint32 nLen) {
    return suboperations::writeUserSystemData(m_obWriteOTP2File, strUserSystemData, nLen, m_Parameters.m_bFAP);
}

int CDownload::FAP() {
    return suboperations::protectAccess(m_obFAP, m_Parameters.m_bFAPLevel);
}

int CDownload::EnableSlib(uint uiPassword, ushort usStartSector, ushort usStartDataSector, ushort usEndSector) {
    return suboperations::enableSlib(m_obEnableSlib, {uiPassword, usStartSector, usStartDataSector, usEndSector});
}

int CDownload::EnBank3() {
    return suboperations::enableBank3(m_obEnBank3,
                                      {m_Parameters.m_bRemapFlag, m_Parameters.m_bNeedRemap, m_Parameters.m_bFlashType,
                                       m_Parameters.m_uiFlashSize, m_Parameters.m_uiFlashDA});
}

int CDownload::ResetMcu() {
    return m_obBootLoader ? m_obBootLoader->ResetMcu() : CResult::UNKNOWN_ERROR;
}

int CDownload::ResetMcu403B() {
    return m_obBootLoader ? m_obBootLoader->ResetMcu403B() : CResult::UNKNOWN_ERROR;
}

int CDownload::ResetMcuAfterEnableSlib() {
    return m_Parameters.m_bEnableSlib ? ResetMcu() : 0;
}

int CDownload::JumpToUserProgram(uint uiAddressOffset) {
    if (m_lsProgramFile.isEmpty() || !m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    uint address = 0;
    const int result = m_lsProgramFile.first()->GetStartAddress(&address);
    return result != 0 ? result : m_obBootLoader->JumpToUserProgram(address + uiAddressOffset);
}
