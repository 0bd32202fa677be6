// What an action asks before it touches the chip. A check that cannot be made is never a "not protected".

#include <algorithm>

#include <QSet>

#include "device/Device.h"
#include "device/Families.h"
#include "device/SpimSectors.h"
#include "foundation/Result.h"
#include "link/AccessProtection.h"
#include "link/BootLoader.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

// Whether erase and program protection covers one of the sectors; an empty list is the whole device.
bool coversOneOf(CUserSystemData &optionBytes, const QList<int> &sectors, bool haveSpim) {
    const int flashSectors = optionBytes.m_nSectorNums;
    // Without a sector table nobody can tell which sectors a clear bit protects.
    if (flashSectors < 1)
        return std::any_of(optionBytes.EPP, optionBytes.EPP + optionBytes.m_iEppLen,
                           [](BYTE bits) { return bits != 0xFF; });
    // One item above the flash sectors stands for the SPIM, where the family has a bit for it.
    const int spimItem = flashSectors;
    const QList<int> items = optionBytes.GetEPPMapSectorIndex(flashSectors + 1);
    const auto isProtected = [items = QSet<int>(items.begin(), items.end()), spimItem](int sector) {
        return items.contains(sector >= firstSpimSector ? spimItem : sector);
    };
    if (!sectors.isEmpty())
        return std::any_of(sectors.begin(), sectors.end(), isProtected);
    return std::any_of(items.begin(), items.end(), [=](int item) { return item < flashSectors || haveSpim; });
}

} // namespace

int CBootLoader::GetAccessProtectiosStatus(bool *protectedFlag) {
    if (protectedFlag == nullptr)
        return CResult::PROGRAM_INPUT_PARAMS_ERROR;
    *protectedFlag = true;
    std::vector<BYTE> block;
    const int result = m_ObDevice != nullptr ? ReadOptionBytes(block) : probeFlashSizeRegister();
    if (isRefusal(result))
        return CResult::SUCCESS;
    if (result == CResult::SUCCESS)
        *protectedFlag = !block.empty() && block[0] != accessProtectionOff;
    return result;
}

// Before the chip is known its option bytes have no length; a protected chip refuses every read.
int CBootLoader::probeFlashSizeRegister() {
    std::string pid;
    std::string series;
    int flashSize = 0;
    const int result = identify(pid, series, flashSize);
    if (result != CResult::SUCCESS)
        return result;
    const uint address = m_pDeviceManager.GetFlashSizeAddress(pid, series, flashSize);
    if (address == 0)
        return CResult::SYS_UNREOGNIZED_DEVICE;
    int kilobytes = 0;
    return GetFlashSize(address, kilobytes);
}

int CBootLoader::HasBeenEraseProgramProtect(QList<int> sectors) {
    if (m_ObDevice == nullptr)
        return CResult::UNKNOWN_ERROR;
    std::vector<BYTE> block;
    const int result = ReadOptionBytes(block);
    if (isRefusal(result))
        return CResult::SYS_ACCESS_PROTECTION;
    if (result != CResult::SUCCESS)
        return result;
    CUserSystemData optionBytes(seriesOf(*m_ObDevice), m_BID, m_ObDevice, block.data(),
                                static_cast<quint32>(block.size()));
    return coversOneOf(optionBytes, sectors, m_ObDevice->m_haveBank3) ? CResult::SYS_ERASEPROGRAM_PROTECTION
                                                                      : CResult::SUCCESS;
}
