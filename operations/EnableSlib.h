#pragma once

#include "operations/COperation.h"

// The sLib area, in sectors of main flash: start <= data start <= end. A data start of 0xFFFF stands
// for an area without a data part.
struct EnableSlibParam {
    uint m_uiPassword = 0; // neither 0 nor 0xFFFFFFFF
    ushort m_usStartSector = 0;
    ushort m_usStartDataSector = 0;
    ushort m_usEndSector = 0;
};
typedef EnableSlibParam ENABLESLIB_PARAM;

// Enables the sLib area. Done means that the chip, restarted, shows this very area enabled.
class CEnableSlib : public COperation {
public:
    explicit CEnableSlib(CBootLoader *obBootLoader);

    // A SLIB_... code, and nothing changed, for a password, a range or a state that does not allow it.
    // PROGRAM_VERIFY_DATA_NOT_MATCHING when the chip took the command and shows another area, or none.
    int Action() override;
    void SetParameters(void *p) override; // an EnableSlibParam

    EnableSlibParam m_Parameters;

private:
    int checkRecord() const;
    int checkChip();
    int readBack();
};
