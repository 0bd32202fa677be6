#pragma once

#include <string>

#include <QList>

#include "files/CFiles.h"
#include "foundation/LibraryTypes.h"
#include "operations/COperation.h"

struct FWCRCParam {
    QList<std::string> m_strDownPathFile;
    QList<uint> m_uiStartAddress; // per path; used for binary files only
    BYTE m_fillData = 0;          // nothing reads it
};
typedef FWCRCParam FWCRC_PARAM;

// The firmware file check: opens the image files and walks them. The host computes no CRC.
class CFWCRC : public COperation {
public:
    explicit CFWCRC(CBootLoader *obBootLoader);

    int InitAction() override;
    int Action() override;
    using COperation::CalculatePercent;
    void CalculatePercent() override;
    void SetParameters(void *p) override; // a FWCRCParam

    int OpenFile();
    int ConfirmAddressOffset();
    int GetFWCRCCode(CProgramFile tmpProgramFile, uint uiAddressOffset);
    int GetFWCRCCode_413(CProgramFile tmpProgramFile, uint uiAddressOffset);
    uint GetLoadFileCRCCode(QList<unsigned char> pFileAllData, int reallength);     // 0xFFFFFFFF
    uint GetLoadFileCRCCode_413(QList<unsigned char> pFileAllData, int reallength); // 0

    QList<CProgramFile> m_obProgramFile;
    QList<uint> m_uiAddressOffset;
    FWCRCParam m_Parameters;
    int m_iAllElementNum = 0;     // of the current file
    int m_iCurrentElementNum = 0; // done
    uint m_iCurrentSzie = 0;      // bytes done
};
