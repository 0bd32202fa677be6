#include "operations/EnBank3.h"

#include <algorithm>
#include <initializer_list>

#include "device/Device.h"
#include "device/Families.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/Target.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

bool keysAreBlank(const CUserSystemData &data) {
    const auto keys = {data.BANK3KEY0, data.BANK3KEY1, data.BANK3KEY2, data.BANK3KEY3,
                       data.BANK3KEY4, data.BANK3KEY5, data.BANK3KEY6, data.BANK3KEY7};
    return std::all_of(keys.begin(), keys.end(), [](BYTE key) { return key == 0xFF; });
}

} // namespace

CEnBank3::CEnBank3(CBootLoader *obBootLoader) : COperation(obBootLoader, OP_ENBANK3, Info_Operation_ENBANK3) {}

void CEnBank3::SetParameters(void *p) {
    m_Parameters = *static_cast<EnBank3Param *>(p);
}

int CEnBank3::InitAction() {
    return COperation::InitAction();
}

int CEnBank3::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    HANDLE link = m_obBootLoader->m_handle;
    if (m_Parameters.m_bNeedRemap) {
        const int status = ZVBL_SPIMREMAP(link, m_Parameters.m_bRemapFlag ? 1 : 0);
        if (status != 0)
            return CResult::Convert(status);
    }
    const uint address = flashAddress();
    const int status = ZVBL_EnableBank3(link, m_Parameters.m_bFlashType, m_Parameters.m_uiFlashSize << 10, address);
    if (status != 0)
        return CResult::Convert(status);
    return done();
}

// A bank whose keys are blank has no encrypted range. Keys that the chip does not show now, because it is
// under access protection, decide nothing: it answers the enabling itself.
uint CEnBank3::flashAddress() {
    const bool isRead = m_obBootLoader->GetUserSystemData() == 0;
    const bool isAsked = isRead && target::familyOf(m_obBootLoader).has(blankKeysOpenBank3);
    return isAsked && keysAreBlank(*m_obBootLoader->m_ObUserSystemData) ? 0 : m_Parameters.m_uiFlashDA;
}
