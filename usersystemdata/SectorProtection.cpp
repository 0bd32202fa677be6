// The EPP bits: bit g is bit g % 8 of byte g / 8, and a clear bit protects its sectors.
//
// Four bytes: bit g covers m_bSectorsPerBit sectors, and the last bit, 31, everything from there to the
// end of flash and the SPIM after it.
// Twenty bytes (ZV32F435, ZV32F437): 32 such bits for the first 128 KiB, then one bit per 128 KiB.
//
// The sector size and the sectors per bit come from a map file and may be 0: no bit has sectors then.

#include <algorithm>

#include "device/Families.h"
#include "device/SpimSectors.h"
#include "usersystemdata/CUserSystemData.h"

namespace {

constexpr int lastBit = 31;       // of the four-byte layout
constexpr int firstGroupBit = 32; // of the twenty-byte layout
constexpr int lastByte = 3;       // of the sectors counted singly

bool hasGroups(const CUserSystemData &data) {
    return familyOf(data.m_MCUSerials).has(wideGroups);
}

// Sectors in 128 KiB.
int boundarySectorIndex(const CUserSystemData &data) {
    const int kilobytes = data.m_SectorSize / 1024;
    return kilobytes > 0 ? 128 / kilobytes : 0;
}

int roundedUp(int value, int divisor) {
    return value <= 0 || divisor <= 0 ? 0 : (value - 1) / divisor + 1;
}

// The bit of a sector in the layout of its family, -1 for none. In the four-byte layout that is never
// the last bit, whose range has no end.
int bitOfSector(const CUserSystemData &data, int sector) {
    const int boundary = boundarySectorIndex(data);
    if (hasGroups(data) && sector >= boundary) {
        const int bit = boundary == 0 ? -1 : firstGroupBit + (sector - boundary) / boundary;
        return bit < data.m_iEppLen * 8 ? bit : -1;
    }
    const int bits = hasGroups(data) ? firstGroupBit : lastBit;
    const int perBit = data.m_bSectorsPerBit;
    return sector >= 0 && sector < perBit * bits ? sector / perBit : -1;
}

void appendRange(QList<int> &list, int first, int end) {
    for (int sector = first; sector < end; ++sector)
        list.append(sector);
}

// Appends the sectors of one bit below the limit.
void appendSectorsOfBit(const CUserSystemData &data, int bit, int limit, QList<int> &list) {
    const int perBit = data.m_bSectorsPerBit;
    const int boundary = boundarySectorIndex(data);
    if (!hasGroups(data)) {
        appendRange(list, bit * perBit, std::min(bit * perBit + perBit, limit));
    } else if (bit < firstGroupBit) {
        appendRange(list, bit * perBit, std::min({bit * perBit + perBit, limit, boundary}));
    } else {
        const int first = boundary + (bit - firstGroupBit) * boundary;
        appendRange(list, first, std::min(first + boundary, limit));
    }
}

bool isProtected(const CUserSystemData &data, int bit) {
    return (data.EPP[bit / 8] >> bit % 8 & 1) == 0;
}

void applyBit(CUserSystemData &data, int bit, bool protect) {
    if (bit < 0 || bit / 8 >= data.m_iEppLen)
        return;
    const int mask = 1 << bit % 8;
    BYTE &byte = data.EPP[bit / 8];
    byte = static_cast<BYTE>(protect ? byte & ~mask : byte | mask);
}

// The bits of one byte that protecting everything clears. MEANT: with the SPIM the last byte has one even
// where the device itself has no sectors in it.
BYTE bitsOfEverything(CUserSystemData &data, int byte, bool bank3Flag) {
    int used = 0;
    data.IsEPPnUsed(byte, &used);
    const int spim = byte == lastByte && bank3Flag ? 0x80 : 0;
    return static_cast<BYTE>(((1 << used) - 1) | spim);
}

} // namespace

bool CUserSystemData::IsEPPnUsed(int EPPn, int *nBitNum) {
    *nBitNum = 0;
    const int boundary = boundarySectorIndex(*this);
    const bool counted = EPPn <= lastByte;
    const int bits =
        counted ? roundedUp(m_nSectorNums, m_bSectorsPerBit) : roundedUp(m_nSectorNums - boundary, boundary);
    const int fullBytes = bits / 8 + (counted ? 0 : lastByte + 1);
    if (EPPn < fullBytes)
        *nBitNum = 8;
    else if (EPPn == fullBytes)
        *nBitNum = bits % 8;
    return *nBitNum != 0;
}

void CUserSystemData::SetEPP(int nSectorIndex, bool bEnable) {
    if (hasGroups(*this)) {
        applyBit(*this, bitOfSector(*this, nSectorIndex), bEnable);
        return;
    }
    // MEANT: a sector that the device does not have stands for the last bit.
    const int bit = nSectorIndex >= m_nSectorNums ? lastBit : bitOfSector(*this, nSectorIndex);
    const bool afterTheRanges = bit < 0 && nSectorIndex >= m_bSectorsPerBit * lastBit;
    applyBit(*this, afterTheRanges ? lastBit : bit, bEnable);
}

void CUserSystemData::SetEPP(bool bEnableAll, bool bank3Flag) {
    for (int i = 0; i < m_iEppLen; ++i) {
        const BYTE bits = bitsOfEverything(*this, i, bank3Flag);
        if (!bEnableAll)
            EPP[i] = 0xFF;
        else if (bits != 0)
            EPP[i] = static_cast<BYTE>(~bits);
    }
}

bool CUserSystemData::GetAllSectorsISEPPStatus(bool bank3Flag) {
    for (int i = 0; i < m_iEppLen; ++i)
        if ((EPP[i] & bitsOfEverything(*this, i, bank3Flag)) != 0)
            return false;
    return true;
}

QList<int> CUserSystemData::GetEPPMapSectorIndex(int actualItemsNum) {
    QList<int> sectors;
    const bool groups = hasGroups(*this);
    for (int bit = 0; bit < m_iEppLen * 8; ++bit) {
        if (!isProtected(*this, bit))
            continue;
        if (groups || bit != lastBit) {
            appendSectorsOfBit(*this, bit, m_nSectorNums, sectors);
            continue;
        }
        appendRange(sectors, lastBit * m_bSectorsPerBit, m_nSectorNums);
        appendRange(sectors, m_nSectorNums, actualItemsNum);
    }
    return sectors;
}

QList<int> CUserSystemData::GetEPPMapSectorIndex(int nSectorIndex, int actualItemsNum) {
    QList<int> sectors;
    const int bit = bitOfSector(*this, nSectorIndex);
    if (hasGroups(*this)) {
        if (bit >= 0)
            appendSectorsOfBit(*this, bit, m_nSectorNums, sectors);
        return sectors;
    }
    const int lastRange = m_bSectorsPerBit * lastBit;
    const bool onDevice = nSectorIndex < m_nSectorNums;
    if (onDevice && bit >= 0) {
        // MEANT: all sectors of the bit, those after the end of the device too.
        appendSectorsOfBit(*this, bit, lastRange, sectors);
    } else if (nSectorIndex >= lastRange && nSectorIndex < actualItemsNum) {
        appendRange(sectors, lastRange, actualItemsNum);
    }
    if (!onDevice) {
        // MEANT: in any case, so a number can stand in the list twice.
        appendRange(sectors, m_nSectorNums, actualItemsNum);
    }
    return sectors;
}

QList<int> CUserSystemData::FilterEPPSectorIndexForEraseProgramProtect(QList<int> aSectorIndexs) {
    QList<int> bits;
    const bool groups = hasGroups(*this);
    qint64 previous = -1;
    for (const int sector : aSectorIndexs) {
        if (!groups && sector >= firstSpimSector) {
            if (!bits.contains(lastBit))
                bits.append(lastBit);
            continue;
        }
        const qint64 kilobytes = qint64(m_SectorSize / 1024) * sector;
        const bool grouped = groups && kilobytes >= 128;
        if (sector < 0 || (!grouped && m_bSectorsPerBit == 0))
            continue;
        const qint64 bit = grouped ? (kilobytes - 128) / 128 + firstGroupBit : sector / m_bSectorsPerBit;
        // MEANT: what stands after it in the list is lost, and below only neighbours are compared.
        if (!groups && bit > lastBit)
            return bits;
        if (bit != previous) {
            bits.append(static_cast<int>(bit));
            previous = bit;
        }
    }
    return bits;
}
