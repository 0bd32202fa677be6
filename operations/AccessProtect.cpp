#include "operations/AccessProtect.h"

#include <algorithm>

#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"

namespace {
constexpr BYTE basicLevel = 1;
constexpr BYTE highLevel = 2;
} // namespace

CAccessProtect::CAccessProtect(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_ACCESS_PROTECT, Info_Operation_FAP_E) {}

void CAccessProtect::SetParameters(void *p) {
    m_protectLevel = *static_cast<BYTE *>(p);
}

int CAccessProtect::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    int result = send();
    if (result != 0)
        return result;
    result = m_obBootLoader->Reconnect();
    if (result != 0)
        return result;
    bool isProtected = false;
    result = m_obBootLoader->GetAccessProtectiosStatus(&isProtected);
    if (result != 0)
        return result;
    if (!isProtected)
        return CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING;
    return done();
}

int CAccessProtect::send() {
    const Commands &can = *m_obBootLoader->m_pCmds;
    HANDLE link = m_obBootLoader->m_handle;
    if (m_protectLevel > highLevel)
        return CResult::PROGRAM_INPUT_PARAMS_ERROR;
    const bool plainWillDo = m_protectLevel == 0 && can.ACCESS_PROTECT_CMD == 1;
    if (can.ACCESS_LEVEL_PROTECT_CMD == 1 && !plainWillDo) {
        const BYTE level = std::max(m_protectLevel, basicLevel);
        return CResult::Convert(static_cast<int>(ZVBL_ACCESS_PROTECT_LEVEL(link, level)));
    }
    // A lower level must never stand in for the high one: the operator would take the chip for sealed.
    if (m_protectLevel > basicLevel || can.ACCESS_PROTECT_CMD != 1)
        return CResult::SYS_CMD_NOT_ALLOWED;
    return CResult::Convert(static_cast<int>(ZVBL_ACCESS_PROTECT(link)));
}
