#include "usersystemdata/CUserSystemData.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "device/Families.h"
#include "usersystemdata/Layouts.h"
#include "usersystemdata/SwitchByte.h"

namespace {

constexpr quint32 elementLength = 4096;
constexpr BYTE erased = 0xFF;

BYTE sectorsPerBit(int series, const CDevice *device) {
    const int fixed = familyOf(series).sectorsPerBit;
    if (fixed != 0)
        return static_cast<BYTE>(fixed);
    return device == nullptr ? BYTE{0} : device->m_BSectorsPerBit;
}

BYTE *erasedBytes(int length) {
    BYTE *bytes = new BYTE[static_cast<std::size_t>(length)];
    std::fill_n(bytes, length, erased);
    return bytes;
}

} // namespace

CUserSystemData::CUserSystemData() = default;

CUserSystemData::CUserSystemData(int MCUSerials, int BIDVersion, CDevice *obDevce, BYTE *optinByte, quint32 optinLen)
    : m_bSectorsPerBit(sectorsPerBit(MCUSerials, obDevce)), m_MCUSerials(MCUSerials), m_BIDVersion(BIDVersion),
      m_ObDevice(obDevce) {
    if (obDevce != nullptr) {
        m_SectorSize = static_cast<int>(obDevce->m_ISectorSize);
        m_nSectorNums = obDevce->m_CMapping == nullptr ? 0 : static_cast<int>(obDevce->m_CMapping->m_AMappingSectorNum);
    }
    const OptionLengths lengths = optionLengths(MCUSerials, BIDVersion, m_SectorSize);
    DATA = erasedBytes(lengths.data);
    EPP = erasedBytes(lengths.epp);
    m_nUserSystemDataLen = lengths.compact;
    m_iEppLen = lengths.epp;
    Set(optinByte, optinLen);
}

CUserSystemData::~CUserSystemData() {
    delete[] DATA;
    delete[] EPP;
}

int CUserSystemData::GetUserSystemDataLength(int iserial, int BIDVersion, int flashSectorSize) {
    return optionLengths(iserial, BIDVersion, flashSectorSize).compact;
}

int CUserSystemData::GetUserSystemDataDATALength(int iserial, int BIDVersion, int flashSectorSize) {
    return optionLengths(iserial, BIDVersion, flashSectorSize).data;
}

int CUserSystemData::GetUserSystemDataEPPLength(int iserial) {
    return optionLengths(iserial, 0, 0).epp;
}

quint32 CUserSystemData::Get(BYTE *&optinByte) {
    // Every gap is sent as an erased byte.
    optinByte = erasedBytes(m_nUserSystemDataLen);
    forEachOptionByte(*this, [&](int at, const BYTE &value) { optinByte[at] = value; });
    return static_cast<quint32>(m_nUserSystemDataLen);
}

void CUserSystemData::Set(BYTE *optinByte, quint32 optinLen) {
    if (optinByte == nullptr || optinLen < static_cast<quint32>(m_nUserSystemDataLen))
        return;
    forEachOptionByte(*this, [&](int at, BYTE &value) { value = optinByte[at]; });
    decodeSwitches(*this);
}

quint32 CUserSystemData::GetElementData(BYTE *&optinByte) {
    optinByte = new BYTE[elementLength];
    for (quint32 i = 0; i < elementLength; ++i)
        optinByte[i] = i % 2 == 0 ? 0xFF : 0x00;
    forEachOptionByte(*this, [&](int at, const BYTE &value) {
        optinByte[2 * at] = value;
        optinByte[2 * at + 1] = static_cast<BYTE>(~value);
    });
    return elementLength;
}

bool CUserSystemData::SetElementData(PIMAGEELEMENT obElement) {
    if (obElement == nullptr || obElement->Data == nullptr ||
        obElement->dwDataLength < static_cast<DWORD>(m_nUserSystemDataLen) * 2)
        return false;
    SetElementData(obElement->Data, static_cast<quint32>(std::min<DWORD>(obElement->dwDataLength, UINT32_MAX)));
    return true;
}

// MEANT: the complements are not compared, so a file with wrong ones is accepted.
void CUserSystemData::SetElementData(BYTE *otp2data, quint32 otp2Len) {
    if (otp2data == nullptr || otp2Len < static_cast<quint32>(m_nUserSystemDataLen) * 2)
        return;
    std::vector<BYTE> compact(static_cast<std::size_t>(m_nUserSystemDataLen));
    for (std::size_t i = 0; i < compact.size(); ++i)
        compact[i] = otp2data[2 * i];
    Set(compact.data(), static_cast<quint32>(compact.size()));
}

void CUserSystemData::SetSSB(bool bnWDT_ATO_EN, bool bnDEPSLP_RST, bool bnSTDBY_RST, bool bBFB2, bool bnWDT_DEPSLP,
                             bool bnWDT_STDBY, bool bSRAM_Parity) {
    m_BnWDT_ATO_EN = bnWDT_ATO_EN;
    m_BnDEPSLP_RST = bnDEPSLP_RST;
    m_BnSTDBY_RST = bnSTDBY_RST;
    m_BBFB2 = bBFB2;
    m_BnWDT_DEPSLP = bnWDT_DEPSLP;
    m_BnWDT_STDBY = bnWDT_STDBY;
    m_SRAM_Parity = bSRAM_Parity;
    encodeSwitches(*this);
}

void CUserSystemData::SetData(BYTE *bData, BYTE len) {
    const int length = GetUserSystemDataDATALength(m_MCUSerials, m_BIDVersion, m_SectorSize);
    if (DATA != nullptr && bData != nullptr && len >= length)
        std::copy_n(bData, length, DATA);
}

void CUserSystemData::SetFAP(BYTE FAPValue) {
    FAP = FAPValue;
}

void CUserSystemData::SetEOPB0(BYTE EValue) {
    EOPB0 = EValue;
}

void CUserSystemData::SetBANK3KEY0(BYTE Key) {
    BANK3KEY0 = Key;
}

void CUserSystemData::SetBANK3KEY1(BYTE Key) {
    BANK3KEY1 = Key;
}

void CUserSystemData::SetBANK3KEY2(BYTE Key) {
    BANK3KEY2 = Key;
}

void CUserSystemData::SetBANK3KEY3(BYTE Key) {
    BANK3KEY3 = Key;
}

void CUserSystemData::SetBANK3KEY4(BYTE Key) {
    BANK3KEY4 = Key;
}

void CUserSystemData::SetBANK3KEY5(BYTE Key) {
    BANK3KEY5 = Key;
}

void CUserSystemData::SetBANK3KEY6(BYTE Key) {
    BANK3KEY6 = Key;
}

void CUserSystemData::SetBANK3KEY7(BYTE Key) {
    BANK3KEY7 = Key;
}

void CUserSystemData::SetSectorNum(int nums) {
    m_nSectorNums = nums;
}
