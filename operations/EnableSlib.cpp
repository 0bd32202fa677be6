#include "operations/EnableSlib.h"

#include "device/Device.h"
#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/SlibArea.h"
#include "operations/Target.h"

namespace {
constexpr ushort noDataPart = 0xFFFF;
} // namespace

CEnableSlib::CEnableSlib(CBootLoader *obBootLoader) : COperation(obBootLoader, OP_ENSLIB, Info_Operation_EnableSlib) {}

void CEnableSlib::SetParameters(void *p) {
    m_Parameters = *static_cast<EnableSlibParam *>(p);
}

int CEnableSlib::Action() {
    int result = checkRecord();
    if (result == 0)
        result = checkChip();
    if (result == 0)
        result = CResult::Convert(static_cast<int>(
            ZVBL_EnableSlib(m_obBootLoader->m_handle, m_Parameters.m_uiPassword, m_Parameters.m_usStartSector,
                            m_Parameters.m_usStartDataSector, m_Parameters.m_usEndSector)));
    if (result == 0)
        result = m_obBootLoader->Reconnect();
    if (result == 0)
        result = readBack();
    if (result != 0)
        return result;
    return done();
}

int CEnableSlib::checkRecord() const {
    const CDevice *device = target::deviceOf(m_obBootLoader);
    if (!device || device->m_ISectorSize == 0)
        return CResult::UNKNOWN_ERROR;
    if (!isSlibPassword(m_Parameters.m_uiPassword))
        return CResult::SLIB_PASSWORD_ERROR;
    const uint sectors = static_cast<uint>(device->m_IFlashSize) * 1024 / device->m_ISectorSize;
    if (m_Parameters.m_usStartSector >= sectors)
        return CResult::SLIB_STARTSECTOR_ERROR;
    if (m_Parameters.m_usEndSector >= sectors || m_Parameters.m_usEndSector < m_Parameters.m_usStartSector)
        return CResult::SLIB_ENDSECTOR_ERROR;
    const ushort data = m_Parameters.m_usStartDataSector;
    const bool inArea = data >= m_Parameters.m_usStartSector && data <= m_Parameters.m_usEndSector;
    return data == noDataPart || inArea ? 0 : CResult::SLIB_STARTDATASECTOR_ERROR;
}

int CEnableSlib::checkChip() {
    if (m_obBootLoader->m_pCmds->ENABLE_SLIB_CMD != 1)
        return CResult::SYS_CMD_NOT_ALLOWED;
    BYTE enabled = 0;
    const int status = ZVBL_GetSlibStatus(m_obBootLoader->m_handle, &enabled);
    if (status != 0)
        return CResult::Convert(status);
    return enabled == 1 ? CResult::SLIB_HASBEEN_ENABLE_ERROR : 0;
}

int CEnableSlib::readBack() {
    SlibArea area;
    const int result = readSlibArea(*m_obBootLoader, area);
    if (result != 0)
        return result;
    const bool asAsked = area.isEnabled && area.start == m_Parameters.m_usStartSector &&
                         area.startData == m_Parameters.m_usStartDataSector && area.end == m_Parameters.m_usEndSector;
    return asAsked ? 0 : CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING;
}
