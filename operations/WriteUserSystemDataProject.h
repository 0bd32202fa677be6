#pragma once

#include "foundation/LibraryTypes.h"
#include "operations/COperation.h"

// Writes the user system data of a project, given as an element image, to the target.
class CWriteUserSystemDataProject : public COperation {
public:
    explicit CWriteUserSystemDataProject(CBootLoader *obBootLoader);
    ~CWriteUserSystemDataProject() override;

    int Action() override;
    using COperation::SetParameters;
    // Copies the bytes.
    void SetParameters(BYTE *data, quint32 len);

    BYTE *m_UserSystemData = nullptr; // owned
    quint32 m_UserSystemDataLen = 0;  // bytes
};
