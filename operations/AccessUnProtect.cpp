#include "operations/AccessUnProtect.h"

#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ReplyLimit.h"
#include "link/ZVBLLIB.h"

CAccessUnProtect::CAccessUnProtect(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_ACCESS_UNPROTECT, Info_Operation_FAP_D) {}

int CAccessUnProtect::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    HANDLE link = m_obBootLoader->m_handle;
    SetTimeOut(link, replylimit::whileErasing);
    const int status = ZVBL_ACCESS_PERM_UNPROTECT(link);
    replylimit::restore(link);
    if (status != 0)
        return CResult::Convert(status);
    int result = m_obBootLoader->Reconnect();
    if (result != 0)
        return result;
    bool isProtected = true;
    result = m_obBootLoader->GetAccessProtectiosStatus(&isProtected);
    if (result != 0)
        return result;
    if (isProtected)
        return CResult::SYS_ACCESS_PROTECTION;
    return done();
}
