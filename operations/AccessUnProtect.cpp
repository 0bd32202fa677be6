#include "operations/AccessUnProtect.h"

#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/JobSteps.h"

CAccessUnProtect::CAccessUnProtect(CBootLoader *obBootLoader) : COperation(obBootLoader) {
    m_EmType = OP_ACCESS_UNPROTECT;
    m_strName = CResult::GetInfoString(Info_Operation_FAP_D);
}

int CAccessUnProtect::InitAction() {
    return COperation::InitAction();
}

int CAccessUnProtect::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    HANDLE link = m_obBootLoader->m_handle;
    SetTimeOut(link, jobsteps::longTimeout);
    const int status = ZVBL_ACCESS_PERM_UNPROTECT(link);
    jobsteps::restoreTimeout(link);
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
    CalculatePercent();
    CallCommand(COMMAND_DONE);
    return 0;
}
