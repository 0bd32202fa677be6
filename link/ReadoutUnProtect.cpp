#include "foundation/Result.h"
#include "link/BootLoader.h"
#include "link/ReplyLimit.h"

int CBootLoader::ReadoutUnProtectNoThread() {
    // The chip erases its flash before it answers.
    SetTimeOut(m_handle, replylimit::whileErasing);
    const int status = ZVBL_ACCESS_PERM_UNPROTECT(m_handle);
    SetTimeOut(m_handle, replylimit::usual);
    return status != 0 ? CResult::Convert(status) : Reconnect();
}
