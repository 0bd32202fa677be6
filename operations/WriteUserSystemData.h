#pragma once

#include "foundation/LibraryTypes.h"
#include "operations/COperation.h"

// Writes user system data, given as an element image, to the target.
class CWriteUserSystemData : public COperation {
public:
    explicit CWriteUserSystemData(CBootLoader *obBootLoader);
    ~CWriteUserSystemData() override;

    int Action() override;
    using COperation::SetParameters;
    // Copies the bytes.
    void SetParameters(BYTE *data, quint32 len);

    BYTE *m_UserSystemData = nullptr; // owned
    quint32 m_UserSystemDataLen = 0;  // bytes
};
