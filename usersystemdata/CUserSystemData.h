#pragma once

#include <QList>
#include <QtGlobal>

#include "device/Device.h"
#include "device/FilesInc.h"
#include "usersystemdata/OptionLayout.h"

// A chip's option bytes as named fields, and the sector protection bits among them.
//
// Two byte forms: the compact form, one byte per item, travels to and from the chip; the element form,
// 4096 bytes of value and complement pairs, lies in files. Which byte is what depends on the family, on
// some families also on the bootloader identifier and the sector size.
class CUserSystemData : public OptionByteCounts {
public:
    // Until a block is read the option bytes are as erased, 0xFF.
    BYTE FAP = 0xFF;              // flash access protection, 0xA5 for off
    BYTE SSB = 0xFF;              // switches, decoded into the booleans below
    BYTE SSB1 = 0xFF;             // ZV32F422 and ZV32F426 only
    BYTE *DATA = nullptr;         // owned
    int m_nUserSystemDataLen = 0; // bytes of the compact form
    BYTE *EPP = nullptr;          // owned; a clear bit protects its sectors
    int m_iEppLen = 0;
    bool m_SRAM_Parity = false;
    bool m_BnWDT_STDBY = false;
    bool m_BnWDT_DEPSLP = false;
    bool m_BnWDT_ATO_EN = false;
    bool m_BnDEPSLP_RST = false;
    bool m_BnSTDBY_RST = false;
    bool m_BBFB2 = false;
    BYTE m_BnNRST_MODE = 0;
    bool m_BnBOOT0 = false;
    bool m_BnBOOT0_SW = false;
    BYTE EOPB0 = 0xFF;
    BYTE RES1 = 0xFF;
    BYTE HID0 = 0;
    BYTE BANK3KEY0 = 0xFF;
    BYTE BANK3KEY1 = 0xFF;
    BYTE BANK3KEY2 = 0xFF;
    BYTE BANK3KEY3 = 0xFF;
    BYTE BANK3KEY4 = 0xFF;
    BYTE BANK3KEY5 = 0xFF;
    BYTE BANK3KEY6 = 0xFF;
    BYTE BANK3KEY7 = 0xFF;
    BYTE m_bSectorsPerBit = 0; // sectors per protection bit
    int m_nSectorNums = 0;
    int m_MCUSerials = 0; // a MCUSERIALS value
    int m_BIDVersion = 0;
    int m_SectorSize = 0;          // bytes
    CDevice *m_ObDevice = nullptr; // not owned

    CUserSystemData();
    // Reads a compact block of the family; one that is too short leaves the option bytes as erased.
    CUserSystemData(int MCUSerials, int BIDVersion, CDevice *obDevce, BYTE *optinByte, quint32 optinLen);
    ~CUserSystemData();
    CUserSystemData(const CUserSystemData &) = delete;
    CUserSystemData &operator=(const CUserSystemData &) = delete;

    // Bytes of the compact form, of DATA and of EPP. The sector size in bytes.
    static int GetUserSystemDataLength(int iserial, int BIDVersion, int flashSectorSize);
    static int GetUserSystemDataDATALength(int iserial, int BIDVersion, int flashSectorSize);
    static int GetUserSystemDataEPPLength(int iserial);

    // Makes the compact form in a new[] block that the caller frees; gives its length.
    quint32 Get(BYTE *&optinByte);
    // Reads a compact form; null or one that is too short changes nothing.
    void Set(BYTE *optinByte, quint32 optinLen);

    // Makes the element form in a new[] block that the caller frees; gives its length, 4096.
    quint32 GetElementData(BYTE *&optinByte);
    // Reads an element form, whose complements are not compared. One shorter than twice the compact
    // length changes nothing and gives false.
    bool SetElementData(PIMAGEELEMENT obElement);
    void SetElementData(BYTE *otp2data, quint32 otp2Len);

    // Stores the switches and encodes those that the family has into SSB.
    void SetSSB(bool bnWDT_ATO_EN, bool bnDEPSLP_RST, bool bnSTDBY_RST, bool bBFB2, bool bnWDT_DEPSLP, bool bnWDT_STDBY,
                bool bSRAM_Parity);

    // Replaces DATA from at least as many bytes. MEANT: the length is one byte wide, so a DATA longer
    // than 255 bytes is never replaced.
    void SetData(BYTE *bData, BYTE len);
    void SetFAP(BYTE FAPValue);
    void SetEOPB0(BYTE EValue);
    void SetBANK3KEY0(BYTE Key);
    void SetBANK3KEY1(BYTE Key);
    void SetBANK3KEY2(BYTE Key);
    void SetBANK3KEY3(BYTE Key);
    void SetBANK3KEY4(BYTE Key);
    void SetBANK3KEY5(BYTE Key);
    void SetBANK3KEY6(BYTE Key);
    void SetBANK3KEY7(BYTE Key);
    void SetSectorNum(int nums);

    // Whether EPP byte EPPn has bits that cover sectors of this device, and how many.
    bool IsEPPnUsed(int EPPn, int *nBitNum);

    // Protects (true: clears the bit) or opens the sectors that share a bit with the sector.
    void SetEPP(int nSectorIndex, bool bEnable);
    // Protects or opens everything; bank3Flag protects the SPIM as well.
    void SetEPP(bool bEnableAll, bool bank3Flag);

    // The sectors of all clear bits. actualItemsNum counts the flash sectors and the SPIM items.
    QList<int> GetEPPMapSectorIndex(int actualItemsNum);
    // The sectors that share a bit with the sector.
    QList<int> GetEPPMapSectorIndex(int nSectorIndex, int actualItemsNum);

    // The protection bits of a list of sectors; a sector above 32767 stands for the SPIM.
    QList<int> FilterEPPSectorIndexForEraseProgramProtect(QList<int> aSectorIndexs);

    // True when every bit that SetEPP(true, bank3Flag) would clear is clear.
    bool GetAllSectorsISEPPStatus(bool bank3Flag);

    // Declared and without a body.
    bool IsEPP1Used();
    bool IsEPP2Used();
    bool IsEPP3Used();
};
