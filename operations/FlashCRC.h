#pragma once

#include "operations/COperation.h"

struct FlashCRCParam {
    uint m_uiStartAddress = 0;   // of the first sector
    uint m_uiBeginSectorNum = 0; // number of the first sector, for the display name
    uint m_uiSectorNumbers = 0;  // how many; the low 16 bits count
};
typedef FlashCRCParam FLASHCRC_PARAM;

// Asks the target for the CRC-32 of a run of sectors.
class CFlashCRC : public COperation {
public:
    explicit CFlashCRC(CBootLoader *obBootLoader);

    int InitAction() override;
    int Action() override;
    void SetParameters(void *p) override; // a FlashCRCParam

    FlashCRCParam m_Parameters;
    uint m_CRCValue = 0; // the target's answer
};
