#include <algorithm>

#include "device/Device.h"
#include "device/SpimSectors.h"
#include "files/TouchedSectors.h"
#include "foundation/Result.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/AccessUnProtect.h"
#include "operations/DisableSlib.h"
#include "operations/EnableSlib.h"
#include "operations/Erase.h"
#include "operations/SlibArea.h"
#include "operations/Target.h"
#include "operations/WriteSN.h"
#include "operations/download/DownloadProject.h"
#include "operations/download/SubOperations.h"
#include "operations/download/VerifyProject.h"

// The single steps of a project download: which sectors it touches, and its sub-operations.

namespace {

// After Bank 3: a part in RAM and above has no sectors.
constexpr uint firstAddressWithoutSectors = 0x20000000;

void appendSpan(QList<int> &sectors, const HEXFILEPARTINFO &part, uint base, uint sectorSize, int firstIndex) {
    const uint begin = (part.PartStartAddress - base) / sectorSize;
    const quint64 bytes = static_cast<quint64>(part.PartStartAddress % sectorSize) + part.PartSize;
    const auto count = static_cast<int>((bytes + sectorSize - 1) / sectorSize);
    for (int i = 0; i < count; ++i)
        sectors.append(static_cast<int>(begin) + firstIndex + i);
}

} // namespace

int CDownloadProject::DownloadFileInSlibCheck() {
    SlibArea area;
    const int result = readSlibArea(*m_obBootLoader, area);
    if (result != 0)
        return result;
    const QList<int> sectors = GetNecessarySectorIndex();
    const bool touches = std::any_of(sectors.begin(), sectors.end(),
                                     [&](int sector) { return sector >= area.start && sector <= area.end; });
    return area.isEnabled && touches ? CResult::SLIB_DOWNLOADFILE_IN_SLIBSECTOR_ERROR : 0;
}

QList<int> CDownloadProject::GetNecessarySectorIndex() {
    QList<int> sectors;
    const CDevice *device = target::deviceOf(m_obBootLoader);
    if (!device || device->m_ISectorSize == 0)
        return sectors;
    for (const SFileInfo &file : m_Parameters.m_DownFileInfo) {
        for (const HEXFILEPARTINFO &part : file.partInfo)
            if (part.PartStartAddress < target::spimBase)
                appendSpan(sectors, part, target::flashBase, device->m_ISectorSize, 0);
            else if (part.PartStartAddress < firstAddressWithoutSectors)
                appendSpan(sectors, part, target::spimBase, spimSectorSize, firstSpimSector);
    }
    return sectors;
}

int CDownloadProject::FlashGetSectorIndex(uint addr, int) {
    const CDevice *device = target::deviceOf(m_obBootLoader);
    return sectorOf(addr, device ? device->m_ISectorSize : 0);
}

int CDownloadProject::Erase(EraseMode enEraseMode) {
    if (!m_obErase)
        return CResult::UNKNOWN_ERROR;
    if (enEraseMode == ERASEMODE_NONE)
        return 0;
    if (enEraseMode == NECESSARY) {
        const int result = SetEraseNecessary();
        if (result != 0)
            return result;
    } else {
        EraseParam wholeDevice;
        m_obErase->SetParameters(&wholeDevice);
    }
    return m_obErase->Start();
}

int CDownloadProject::SetEraseNecessary() {
    EraseParam record;
    record.m_iSectorIndex = GetNecessarySectorIndex();
    if (record.m_iSectorIndex.isEmpty() || !m_obErase)
        return CResult::UNKNOWN_ERROR;
    m_obErase->SetParameters(&record);
    return 0;
}

int CDownloadProject::Verify(SFileInfo tmpProgramFile) {
    if (!m_obVerify)
        return CResult::UNKNOWN_ERROR;
    m_obVerify->SetVerifyFile(tmpProgramFile);
    m_obVerify->SetVerifyOptimize(m_Parameters.m_bOptimize);
    return m_obVerify->Start();
}

int CDownloadProject::WriteSN(uint uiSNAddress, uint uiSNNumber, uint uiSNStep) {
    WriteSN_Param record{uiSNAddress, uiSNNumber, uiSNStep};
    const int result = suboperations::writeSerialNumber(m_obWriteSN, record);
    m_Parameters.m_uiSNNumber = record.m_uiSNNumber;
    return result;
}

int CDownloadProject::ApplyUserSystemData(BYTE *strUserSystemData, quint32 nLen) {
    return suboperations::writeUserSystemData(m_obWriteOTP2File, strUserSystemData, nLen, m_Parameters.m_bFAP);
}

int CDownloadProject::FAP() {
    return suboperations::protectAccess(m_obFAP, m_Parameters.m_bFAPLevel);
}

int CDownloadProject::RDUP() {
    return m_obRDUP ? m_obRDUP->Start() : CResult::UNKNOWN_ERROR;
}

int CDownloadProject::EnableSlib(uint uiPassword, ushort usStartSector, ushort usStartDataSector, ushort usEndSector) {
    return suboperations::enableSlib(m_obEnableSlib, {uiPassword, usStartSector, usStartDataSector, usEndSector});
}

int CDownloadProject::DisableSlib(uint uiPassword) {
    if (!m_obDisableSlib)
        return CResult::UNKNOWN_ERROR;
    m_obDisableSlib->SetParameters(&uiPassword);
    return m_obDisableSlib->Start();
}

int CDownloadProject::EnBank3() {
    return suboperations::enableBank3(m_obEnBank3,
                                      {m_Parameters.m_bRemapFlag, m_Parameters.m_bNeedRemap, m_Parameters.m_bFlashType,
                                       m_Parameters.m_uiFlashSize, m_Parameters.m_uiFlashDA});
}

int CDownloadProject::ResetMcu() {
    return m_obBootLoader ? m_obBootLoader->ResetMcu() : CResult::UNKNOWN_ERROR;
}

int CDownloadProject::JumpToUserProgram() {
    return m_obBootLoader->JumpToUserProgram(m_Parameters.m_DownFileInfo.first().StartAddress);
}
