#include "operations/Erase.h"

#include "device/Device.h"
#include "foundation/Result.h"
#include "foundation/ResultMessages.h"
#include "link/BootLoader.h"
#include "link/ReplyLimit.h"
#include "link/ZVBLLIB.h"
#include "operations/Target.h"

namespace {

constexpr unsigned short oneSector = 1;
constexpr unsigned short bank1 = 0xFFFE;
constexpr unsigned short bank2 = 0xFFFD;
constexpr unsigned short bank3 = 0xFFFC;
constexpr unsigned short oneBlock = 0xFFFB;

constexpr int bank1MaxKb = 512; // a larger flash has a second bank

// MEANT: the reply limit after a whole-device erase, whatever it was before, in seconds.
constexpr unsigned int saveTimeout = 5;

} // namespace

CErase::CErase(CBootLoader *obBootLoader) : COperation(obBootLoader, OP_ERASE, Info_Operation_Erase) {}

int CErase::InitAction() {
    return COperation::InitAction();
}

void CErase::SetParameters(void *p) {
    m_parameters = *static_cast<EraseParam *>(p);
}

int CErase::Action() {
    m_iAllSectorNum = 0;
    m_iAddSectorNum = 0;
    const CDevice *device = target::deviceOf(m_obBootLoader);
    if (!device)
        return CResult::UNKNOWN_ERROR;
    const QList<int> &blocks = m_parameters.m_iBlockIndex;
    const QList<int> &sectors = m_parameters.m_iSectorIndex;
    int result = 0;
    if (!blocks.isEmpty())
        result =
            refuseProtected(GetNecessarySectorIndexFromBlockIndex(blocks, device->m_BlockSize, device->m_ISectorSize));
    if (result == 0 && !sectors.isEmpty())
        result = refuseProtected(sectors);
    if (blocks.isEmpty() && sectors.isEmpty())
        result = refuseProtected({});
    if (result != 0)
        return result;
    m_iAllSectorNum = blocks.size() + sectors.size();
    return Erase();
}

int CErase::refuseProtected(const QList<int> &sectors) {
    return m_obBootLoader->HasBeenEraseProgramProtect(sectors);
}

QList<int> CErase::GetNecessarySectorIndexFromBlockIndex(QList<int> BlockIndex, uint BlockSize, uint sectorSize) {
    QList<int> sectors;
    if (sectorSize == 0)
        return sectors;
    for (const int block : BlockIndex) {
        const uint begin = static_cast<uint>(block) * BlockSize + target::flashBase;
        const uint end = (static_cast<uint>(block) + 1) * BlockSize + target::flashBase;
        // MEANT: a block at or beyond SPIM's base is dropped here, and erased all the same.
        if (end >= target::spimBase)
            continue;
        const uint endSector = (end - target::flashBase) / sectorSize;
        for (uint sector = (begin - target::flashBase) / sectorSize; sector < endSector; ++sector)
            sectors.append(static_cast<int>(sector));
    }
    return sectors;
}

int CErase::Erase() {
    if (m_parameters.m_iBlockIndex.isEmpty() && m_parameters.m_iSectorIndex.isEmpty())
        return eraseDevice();
    bool goOn = true;
    int result = eraseBlocks(goOn);
    if (goOn)
        result = eraseSectors(goOn);
    if (goOn)
        CallCommand(COMMAND_DONE);
    return result;
}

int CErase::eraseDevice() {
    SetTimeOut(m_obBootLoader->m_handle, replylimit::whileErasing);
    const int erased = eraseBanks();
    const int restored = SetTimeOut(m_obBootLoader->m_handle, saveTimeout * 1000);
    const int status = erased != 0 ? erased : restored;
    if (status != 0)
        return CResult::Convert(status);
    return done();
}

int CErase::eraseBanks() {
    const CDevice *device = m_obBootLoader->m_ObDevice;
    HANDLE link = m_obBootLoader->m_handle;
    int status = ZVBL_ERASE(link, bank1, nullptr, 0);
    if (status == 0 && device->m_IFlashSize > bank1MaxKb)
        status = ZVBL_ERASE(link, bank2, nullptr, 0);
    // The sLib area lies in main flash, so on every family it has no say in how Bank 3 is erased.
    if (status == 0 && device->m_haveBank3)
        status = ZVBL_ERASE(link, bank3, nullptr, 0);
    return status;
}

int CErase::eraseBlocks(bool &goOn) {
    int result = 0;
    for (const int block : m_parameters.m_iBlockIndex) {
        const uint address = m_obBootLoader->m_ObDevice->m_BlockSize * static_cast<uint>(block) + target::flashBase;
        result = unitDone(ZVBL_BLOCK_ERASE(m_obBootLoader->m_handle, oneBlock, address), goOn);
        if (!goOn)
            break;
    }
    return result;
}

int CErase::eraseSectors(bool &goOn) {
    int result = 0;
    for (const int sector : m_parameters.m_iSectorIndex) {
        // MEANT: an index above 65535 loses its upper bits.
        BYTE bSectorIndex[2] = {static_cast<BYTE>(sector), static_cast<BYTE>(sector >> 8)};
        const int status =
            ZVBL_ERASE(m_obBootLoader->m_handle, oneSector, bSectorIndex, m_obBootLoader->m_ObDevice->m_ISectorSize);
        result = unitDone(status, goOn);
        if (!goOn)
            break;
    }
    return result;
}

int CErase::unitDone(int status, bool &goOn) {
    goOn = status == 0 && !IsCancel();
    if (goOn) {
        CalculatePercent();
        Callback(INFO_TYPE_ACTION);
    }
    return CResult::Convert(status);
}

void CErase::CalculatePercent() {
    if (m_iAllSectorNum == 0) {
        m_ActionInfo.m_iPercent = 100;
        return;
    }
    ++m_iAddSectorNum;
    // MEANT: divides first, so 29 of 100 shows 28.
    m_ActionInfo.m_iPercent =
        static_cast<int>(static_cast<double>(m_iAddSectorNum) / static_cast<double>(m_iAllSectorNum) * 100.0);
}
