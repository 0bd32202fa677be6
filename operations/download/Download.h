#pragma once

#include <string>

#include <QList>

#include "foundation/LibraryTypes.h"
#include "operations/COperation.h"

class CAccessProtect;
class CEnableSlib;
class CEnBank3;
class CErase;
class CProgramFile;
class CVerify;
class CWriteSN;
class CWriteUserSystemData;

struct DownloadParam {
    QList<std::string> m_strDownPathFile; // at least one, each with a "/"
    QList<uint> m_uiStartAddress;         // per path; used for binary files only
    EraseMode m_enEraseMode = NECESSARY;
    bool m_bOptimize = false; // leave out 0xFF data
    bool m_bJump = false;     // run the image at the end
    bool m_bVerify = false;
    BYTE *m_UserSystemDataArray = nullptr; // from new[], or null; the job deletes it
    quint32 m_UserSystemDataLen = 0;       // bytes
    bool m_bFAP = false;                   // access protection at the end
    BYTE m_bFAPLevel = 0;
    bool m_bWriteSN = false;
    uint m_uiSNAddress = 0, m_uiSNNumber = 0, m_uiSNStep = 0;
    bool m_bEnableSlib = false;
    uint m_uiPassword = 0;
    ushort m_usStartSector = 0, m_usStartDataSector = 0, m_usEndSector = 0;
    bool m_bEnBank3 = false; // enable SPIM before erasing
    bool m_bRemapFlag = false, m_bNeedRemap = false;
    BYTE m_bFlashType = 0;
    uint m_uiFlashSize = 0, m_uiFlashDA = 0; // KB; FLASH_DA
};
typedef DownloadParam DOWNLOAD_PARAM;

// Puts image files into the target: opens them, checks and erases the sectors that they touch, writes
// and verifies file by file, and does the finishing steps that were asked for.
class CDownload : public COperation {
public:
    explicit CDownload(CBootLoader *obBootLoader);
    ~CDownload() override;

    void Cancel() override;
    int InitAction() override;
    int Action() override;
    int ActionDone() override;
    void SetParameters(void *p) override; // a DownloadParam
    void SetOperationInfoDelegate(void *pFun) override;

    // Lends the files to the job.
    void SetDownLoadFile(QList<CProgramFile *> lsProgramFile);
    int OpenFile();
    int ConfirmAddressOffset();
    int EnBank3();
    int Erase(EraseMode enEraseMode);
    int SetEraseNecessary();
    int SetEraseBlockNecessary();
    // The sector of an address: -1 below flash, 32768 and up from SPIM's base. flashSize plays no part.
    int FlashGetSectorIndex(uint addr, int flashSize);
    // The sectors that the images touch, each once, in the order of first appearance.
    QList<int> GetNecessarySectorIndex();
    // Turns sectors into whole blocks where it can; sizes in bytes. What it finds stays in its own
    // copies of the two output lists.
    void GetNecessaryBlockIndexAndSectorIndex(QList<int> sectorIndex, QList<int> outsectorIndex,
                                              QList<int> outblockIndex, uint BlockSize, uint sectorSize);
    int Download(uint uiAddressOffset, CProgramFile *tmpProgramFile);
    int Verify(uint uiAddressOffset, CProgramFile *tmpProgramFile);
    using COperation::CalculatePercent;
    void CalculatePercent(CProgramFile *pFile);
    int ResetMcu();
    int ResetMcu403B();
    int ResetMcuAfterEnableSlib();
    int JumpToUserProgram(uint uiAddressOffset);
    int ApplyUserSystemData(BYTE *strUserSystemData, quint32 nLen);
    int FAP();
    int WriteSN(uint uiSNAddress, uint uiSNNumber, uint uiSNStep);
    int EnableSlib(uint uiPassword, ushort usStartSector, ushort usStartDataSector, ushort usEndSector);

    // One per path. MEANT: not owned; they stay until the process ends, but for the one that m_obVerify had last.
    QList<CProgramFile *> m_lsProgramFile;
    CErase *m_obErase = nullptr; // the sub-operations are owned
    CVerify *m_obVerify = nullptr;
    CWriteSN *m_obWriteSN = nullptr;
    CAccessProtect *m_obFAP = nullptr;
    DownloadParam m_Parameters;
    CWriteUserSystemData *m_obWriteOTP2File = nullptr;
    CEnableSlib *m_obEnableSlib = nullptr;
    CEnBank3 *m_obEnBank3 = nullptr;
    QList<uint> m_uiAddressOffset; // per file, added to every element's address

private:
    QList<COperation *> subOperations() const;
    int checkSectors();
    int prepareFlash();
    bool announce(const CProgramFile &file);
    int restartFirst403();
};
