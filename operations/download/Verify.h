#pragma once

#include "operations/COperation.h"

class CProgramFile;

// Compares an open image with the target, one element per Action; the sub-operation of a download.
class CVerify : public COperation {
public:
    explicit CVerify(CBootLoader *obBootLoader);
    // Deletes the file it was given last.
    ~CVerify() override;

    // Needs a file.
    int InitAction() override;
    // PROGRAM_VERIFY_DATA_NOT_MATCHING at the first element that differs.
    int Action() override;
    using COperation::CalculatePercent;
    void CalculatePercent() override;
    void SetParameters(void *p) override; // without effect

    void SetVerifyFile(CProgramFile *obProgramFile);
    // Added to every element's address, in unsigned 32 bits.
    void SetAddressOffset(uint uiAddressOffset);

    CProgramFile *m_obProgramFile = nullptr;
    uint m_uiAddressOffset = 0;
};
