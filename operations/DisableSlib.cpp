#include "operations/DisableSlib.h"

#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ReplyLimit.h"
#include "link/ZVBLLIB.h"
#include "operations/SlibArea.h"

namespace {
constexpr int statusRefused = 0x14; // the chip took the command and refused what came with it
} // namespace

CDisableSlib::CDisableSlib(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_DISSLIB, Info_Operation_DisableSlib) {}

void CDisableSlib::SetParameters(void *p) {
    m_uiPassword = *static_cast<uint *>(p);
}

int CDisableSlib::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    if (!isSlibPassword(m_uiPassword))
        return CResult::SLIB_DISABLE_PASSWORD_ERROR;
    if (m_obBootLoader->m_pCmds->DISABLE_SLIB_CMD != 1)
        return CResult::SYS_CMD_NOT_ALLOWED;
    bool enabled = false;
    int result = readEnabled(enabled);
    // Without an area the chip is already as asked for, and would refuse every password.
    if (result == 0 && enabled)
        result = disable();
    if (result != 0)
        return result;
    return done();
}

int CDisableSlib::readEnabled(bool &enabled) {
    BYTE answer = 0;
    const int status = ZVBL_GetSlibStatus(m_obBootLoader->m_handle, &answer);
    enabled = answer == 1;
    return CResult::Convert(status);
}

int CDisableSlib::disable() {
    HANDLE link = m_obBootLoader->m_handle;
    SetTimeOut(link, replylimit::whileErasing);
    const int status = ZVBL_DisableSlib(link, m_uiPassword);
    replylimit::restore(link);
    if (status != 0)
        return status == statusRefused ? CResult::SLIB_DISABLE_PASSWORD_ERROR : CResult::Convert(status);
    int result = m_obBootLoader->Reconnect();
    if (result != 0)
        return result;
    bool enabled = true;
    result = readEnabled(enabled);
    if (result != 0)
        return result;
    return enabled ? CResult::SLIB_HASBEEN_ENABLE_ERROR : 0;
}
