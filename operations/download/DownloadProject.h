#pragma once

#include <QList>

#include "foundation/LibraryTypes.h"
#include "foundation/ShareParameter.h"
#include "operations/COperation.h"

class CAccessProtect;
class CAccessUnProtect;
class CDisableSlib;
class CEnableSlib;
class CEnBank3;
class CErase;
class CVerifyProject;
class CWriteSN;
class CWriteUserSystemData;

struct DLPROJECTParam {
    QList<SFileInfo> m_DownFileInfo; // with their data; at least one
    QList<uint> m_uiStartAddress;    // the job does not read it
    EraseMode m_enEraseMode = NECESSARY;
    bool m_bOptimize = false, m_bJump = false, m_bVerify = false;
    BYTE *m_UserSystemDataArray = nullptr; // stays the caller's
    quint32 m_UserSystemDataLen = 0;       // bytes
    bool m_bFAP = false;
    BYTE m_bFAPLevel = 1;
    bool m_bRDUP = false; // remove access protection before anything else
    bool m_bWriteSN = false;
    uint m_uiSNAddress = 0, m_uiSNNumber = 0, m_uiSNStep = 0;
    bool m_bEnBank3 = false, m_bRemapFlag = false, m_bNeedRemap = false;
    BYTE m_bFlashType = 144;
    uint m_uiFlashSize = 0, m_uiFlashDA = 0; // KB; FLASH_DA
    bool m_bEnableSlib = false;
    uint m_uiEnablePassword = 0;
    ushort m_usStartSector = 0, m_usStartDataSector = 0, m_usEndSector = 0;
    bool m_bDisableSlib = false; // remove sLib before erasing
    uint m_uiDisablePassword = 0;
};
typedef DLPROJECTParam DLPROJECT_PARAM;

// The download of a project: files that lie in memory, part by part.
class CDownloadProject : public COperation {
public:
    explicit CDownloadProject(CBootLoader *obBootLoader);
    ~CDownloadProject() override;

    void Cancel() override;
    int InitAction() override;
    int Action() override;
    int ActionDone() override;
    void SetParameters(void *p) override; // a DLPROJECTParam
    using COperation::SetOperationInfoDelegate;
    // MEANT: does nothing and overrides nothing, so the sub-operations have no listener.
    void SetOperationInfoDelegate();

    int EnBank3();
    int Erase(EraseMode enEraseMode);
    int SetEraseNecessary();
    int FlashGetSectorIndex(uint addr, int flashSize);
    // The sectors of the parts' spans, in order, a shared one as often as it is touched.
    QList<int> GetNecessarySectorIndex();
    // SLIB_DOWNLOADFILE_IN_SLIBSECTOR_ERROR if a part touches the enabled sLib area.
    int DownloadFileInSlibCheck();
    int Download(SFileInfo tmpProgramFile);
    int Verify(SFileInfo tmpProgramFile);
    using COperation::CalculatePercent;
    void CalculatePercent(int size); // bytes just sent
    int ResetMcu();
    int JumpToUserProgram();
    int ApplyUserSystemData(BYTE *strUserSystemData, quint32 nLen);
    int FAP();
    int RDUP();
    int WriteSN(uint uiSNAddress, uint uiSNNumber, uint uiSNStep);
    int EnableSlib(uint uiPassword, ushort usStartSector, ushort usStartDataSector, ushort usEndSector);
    int DisableSlib(uint uiPassword);

    CErase *m_obErase = nullptr; // the sub-operations are owned
    CVerifyProject *m_obVerify = nullptr;
    CWriteSN *m_obWriteSN = nullptr;
    CAccessProtect *m_obFAP = nullptr;
    CAccessUnProtect *m_obRDUP = nullptr;
    CWriteUserSystemData *m_obWriteOTP2File = nullptr;
    CEnBank3 *m_obEnBank3 = nullptr;
    CEnableSlib *m_obEnableSlib = nullptr;
    CDisableSlib *m_obDisableSlib = nullptr;
    DLPROJECTParam m_Parameters;
    QList<uint> m_uiAddressOffset;                  // stays empty
    bool m_hasGetEraseProgramProtectStatus = false; // the protection check of this run is done
    uint m_TempDownlaodFileSize = 0;                // bytes of the current file
    uint m_TempDownlaodedFileSize = 0;              // bytes of it written

private:
    QList<COperation *> subOperations() const;
    int checkRecord() const;
    bool prepare(int &result);
    int checkSectors();
    void describe(const SFileInfo &file);
    int downloadPart(const HEXFILEPARTINFO &part);
};
