#pragma once

#include <QList>
#include <QString>

#include "operations/COperation.h"

class CProgramFile;

struct UploadParam {
    QString m_strUploadPathFile; // the file to write, as textOf() has it
    QList<int> m_aSectorIndexs;  // sectors in rising order; empty stands for every sector of the map
    int m_bank3Size = 0;         // KB
};
typedef UploadParam UPLOAD_PARAM;

// Reads sectors of the target into a new image, one element per Action, and saves it to a file.
class CUpload : public COperation {
public:
    explicit CUpload(CBootLoader *obBootLoader);
    ~CUpload() override;

    int InitAction() override;
    // The file is written last: no failure before that touches it.
    int Action() override;
    using COperation::CalculatePercent;
    void CalculatePercent() override;
    void SetParameters(void *p) override; // an UploadParam

    CProgramFile *m_obProgramFile = nullptr; // owned
    UploadParam m_Parameters;
};
