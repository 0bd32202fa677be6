#include "operations/ProtectionBits.h"

#include <algorithm>

#include "device/SpimSectors.h"
#include "foundation/Result.h"
#include "link/AccessProtection.h"
#include "link/BootLoader.h"
#include "usersystemdata/CUserSystemData.h"

namespace protectionbits {

namespace {

constexpr int lastBitOfShortLayout = 31; // covers all that is after bit 30, SPIM included

bool isShortLayout(const CUserSystemData &data) {
    return data.m_iEppLen == CUserSystemData::OTP2_EPP_LENGTH_ZV32;
}

bool covers(CUserSystemData &data, int bit) {
    if (isShortLayout(data) && bit == lastBitOfShortLayout)
        return true;
    int used = 0;
    return data.IsEPPnUsed(bit / 8, &used) && bit % 8 < used;
}

bool isOnChip(const CUserSystemData &data, int sector) {
    if (sector >= firstSpimSector)
        return isShortLayout(data); // the long layout has no bit for SPIM
    return sector >= 0 && sector < data.m_nSectorNums;
}

QList<int> allSectors(const CUserSystemData &data) {
    QList<int> sectors;
    for (int sector = 0; sector < data.m_nSectorNums; ++sector)
        sectors.append(sector);
    return sectors;
}

} // namespace

int readProtected(CBootLoader &control, QList<int> &bits) {
    bits.clear();
    const int result = control.GetUserSystemData();
    if (result != 0)
        return isRefusal(result) ? CResult::SYS_ACCESS_PROTECTION : result;
    CUserSystemData *data = control.m_ObUserSystemData;
    for (int bit = 0; bit < data->m_iEppLen * 8; ++bit) {
        const bool isClear = (data->EPP[bit / 8] >> (bit % 8) & 1) == 0;
        if (isClear && covers(*data, bit))
            bits.append(bit);
    }
    return 0;
}

int covering(const CBootLoader &control, const QList<int> &sectors, QList<int> &bits) {
    bits.clear();
    CUserSystemData *data = control.m_ObUserSystemData;
    if (!data)
        return CResult::UNKNOWN_ERROR;
    // The filter ends at the first sector after those of bit 31, which bit 31 covers all the same.
    const int lastShortSector = lastBitOfShortLayout * data->m_bSectorsPerBit;
    QList<int> wanted = sectors.isEmpty() ? allSectors(*data) : sectors;
    for (int &sector : wanted) {
        if (!isOnChip(*data, sector))
            return CResult::PROGRAM_INPUT_PARAMS_ERROR;
        if (isShortLayout(*data) && sector < firstSpimSector)
            sector = std::min(sector, lastShortSector);
    }
    for (const int bit : data->FilterEPPSectorIndexForEraseProgramProtect(wanted))
        if (!bits.contains(bit))
            bits.append(bit);
    return bits.isEmpty() ? CResult::PROGRAM_INPUT_PARAMS_ERROR : 0;
}

} // namespace protectionbits
