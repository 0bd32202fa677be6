#include "operations/EraseProgramUnProtect.h"

#include <QList>

#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/ProtectionBits.h"

CEraseProgramUnProtect::CEraseProgramUnProtect(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_ERASEPROGRAM_UNPROTECT, Info_Operation_EPP_D) {}

int CEraseProgramUnProtect::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    const int status = ZVBL_ERASEPROGRAM_PERM_UNPROTECT(m_obBootLoader->m_handle);
    if (status != 0)
        return CResult::Convert(status);
    int result = m_obBootLoader->Reconnect();
    if (result != 0)
        return result;
    QList<int> protectedBits;
    result = protectionbits::readProtected(*m_obBootLoader, protectedBits);
    if (result != 0)
        return result;
    if (!protectedBits.isEmpty())
        return CResult::SYS_ERASEPROGRAM_PROTECTION;
    return done();
}
