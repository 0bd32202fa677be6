#include "operations/FlashCRC.h"

#include "foundation/LibraryTypes.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ReplyLimit.h"
#include "link/ZVBLLIB.h"

namespace {
constexpr unsigned long settleMs = 50;
} // namespace

CFlashCRC::CFlashCRC(CBootLoader *obBootLoader) : COperation(obBootLoader, OP_FLASHCRC, Info_Operation_FlashCRC) {}

void CFlashCRC::SetParameters(void *p) {
    m_Parameters = *static_cast<FlashCRCParam *>(p);
}

int CFlashCRC::InitAction() {
    const uint last = m_Parameters.m_uiBeginSectorNum + m_Parameters.m_uiSectorNumbers - 1;
    m_strName = CResult::GetInfoString(Info_Operation_FlashCRC) + ": Sector" +
                std::to_string(m_Parameters.m_uiBeginSectorNum) + "--Sector" + std::to_string(last);
    return COperation::InitAction();
}

int CFlashCRC::Action() {
    if (!m_obBootLoader)
        return CResult::UNKNOWN_ERROR;
    HANDLE link = m_obBootLoader->m_handle;
    SetTimeOut(link, replylimit::whileErasing);
    QThread::msleep(settleMs);
    BYTE crc[4] = {};
    // MEANT: a count above 65535 is cut to its low 16 bits.
    const int status = ZVBL_GetFirmwareCRC(link, m_Parameters.m_uiStartAddress,
                                           static_cast<unsigned short>(m_Parameters.m_uiSectorNumbers), crc);
    const int restored = replylimit::restore(link);
    if (status != 0)
        return CResult::Convert(status);
    m_CRCValue = static_cast<uint>(crc[0]) << 24 | static_cast<uint>(crc[1]) << 16 | static_cast<uint>(crc[2]) << 8 |
                 static_cast<uint>(crc[3]);
    done();
    return restored; // MEANT: the bare status byte
}
