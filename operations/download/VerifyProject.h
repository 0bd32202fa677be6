#pragma once

#include "foundation/ShareParameter.h"
#include "operations/COperation.h"

// Compares a project's file with the target, in one Action; the sub-operation of a project download.
class CVerifyProject : public COperation {
public:
    explicit CVerifyProject(CBootLoader *obBootLoader);

    int InitAction() override;
    int Action() override;
    using COperation::CalculatePercent;
    void CalculatePercent(int size); // bytes just compared

    void SetVerifyFile(SFileInfo obProgramFile);
    void SetVerifyOptimize(bool bOptimize);

    SFileInfo m_obProgramFile;
    uint m_TempDownlaodFileSize = 0;   // bytes of the file
    uint m_TempDownlaodedFileSize = 0; // bytes of it compared
    bool m_bOptimize = false;

private:
    uint addressOffset(int partNumber) const;
    int verifyPart(const HEXFILEPARTINFO &part, uint address);
};
