#include "operations/WriteSN.h"

#include "device/Device.h"
#include "files/TouchedSectors.h"
#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/Target.h"
#include "operations/VerifyResult.h"

CWriteSN::CWriteSN(CBootLoader *obBootLoader) : COperation(obBootLoader, OP_WRITESN, Info_Operation_WRITESN) {}

void CWriteSN::SetParameters(void *p) {
    m_Parameters = *static_cast<WriteSN_Param *>(p);
}

int CWriteSN::Action() {
    const CDevice *device = target::deviceOf(m_obBootLoader);
    if (!device)
        return CResult::UNKNOWN_ERROR;
    const uint address = m_Parameters.m_uiSNAddress;
    const int result = m_obBootLoader->HasBeenEraseProgramProtect(
        {sectorOf(address, device->m_ISectorSize), sectorOf(address + 3, device->m_ISectorSize)});
    if (result != 0)
        return result;
    const uint number = m_Parameters.m_uiSNNumber;
    BYTE bytes[4] = {static_cast<BYTE>(number), static_cast<BYTE>(number >> 8), static_cast<BYTE>(number >> 16),
                     static_cast<BYTE>(number >> 24)};
    // Without the optimise flag: a number of 0xFFFFFFFF is data like any other.
    BYTE status = ZVBL_DNLOAD(m_obBootLoader->m_handle, address, bytes, sizeof bytes, 0);
    if (status != 0)
        return CResult::Convert(static_cast<int>(status));
    status = ZVBL_VERIFY(m_obBootLoader->m_handle, address, bytes, sizeof bytes, 0);
    if (status != 0)
        return verifyResult(status);
    m_Parameters.m_uiSNNumber += m_Parameters.m_uiSNStep;
    return done();
}
