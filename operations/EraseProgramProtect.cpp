#include "operations/EraseProgramProtect.h"

#include <algorithm>
#include <set>
#include <vector>

#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"
#include "operations/ProtectionBits.h"

CEraseProgramProtect::CEraseProgramProtect(CBootLoader *obBootLoader)
    : COperation(obBootLoader, OP_ERASEPROGRAM_PROTECT, Info_Operation_EPP_E) {}

void CEraseProgramProtect::SetParameters(void *p) {
    m_iSectorIndex = *static_cast<QList<int> *>(p);
}

int CEraseProgramProtect::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    QList<int> protectedBefore;
    QList<int> asked;
    int result = protectionbits::readProtected(*m_obBootLoader, protectedBefore);
    if (result == 0)
        result = protectionbits::covering(*m_obBootLoader, m_iSectorIndex, asked);
    if (result == 0)
        result = send(protectedBefore, asked);
    if (result == 0)
        result = m_obBootLoader->Reconnect();
    if (result == 0)
        result = readBack(asked);
    if (result != 0)
        return result;
    return done();
}

// Bits that are protected already go along, so that they stay so on a chip that takes the list for the
// whole of its protection.
int CEraseProgramProtect::send(const QList<int> &protectedBefore, const QList<int> &asked) {
    std::set<BYTE> bits;
    for (const int bit : protectedBefore + asked)
        bits.insert(static_cast<BYTE>(bit));
    std::vector<BYTE> list(bits.begin(), bits.end());
    return CResult::Convert(static_cast<int>(
        ZVBL_ERASEPROGRAM_PROTECT(m_obBootLoader->m_handle, static_cast<BYTE>(list.size()), list.data())));
}

int CEraseProgramProtect::readBack(const QList<int> &asked) {
    QList<int> protectedNow;
    const int result = protectionbits::readProtected(*m_obBootLoader, protectedNow);
    if (result != 0)
        return result;
    const bool all = std::all_of(asked.begin(), asked.end(), [&](int bit) { return protectedNow.contains(bit); });
    return all ? 0 : CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING;
}
