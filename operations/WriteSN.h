#pragma once

#include "operations/COperation.h"

struct WriteSN_Param {
    uint m_uiSNAddress = 0; // target address
    uint m_uiSNNumber = 0;
    uint m_uiSNStep = 0; // from this chip's number to the next one's
};
typedef WriteSN_Param WRITESN_PARAM;

// Writes a serial number, four bytes, lowest first, into erased flash and verifies it. After that
// the record holds the next chip's number.
class CWriteSN : public COperation {
public:
    explicit CWriteSN(CBootLoader *obBootLoader);

    int Action() override;
    void SetParameters(void *p) override; // a WriteSN_Param

    WriteSN_Param m_Parameters;
};
