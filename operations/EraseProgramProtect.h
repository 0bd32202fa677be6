#pragma once

#include <QList>

#include "operations/COperation.h"

// Protects sectors against erasing and programming, beside those protected already. Done means that
// the chip, restarted, shows every listed sector protected.
class CEraseProgramProtect : public COperation {
public:
    explicit CEraseProgramProtect(CBootLoader *obBootLoader);

    // PROGRAM_VERIFY_DATA_NOT_MATCHING when the chip took the command and a sector asked for is open.
    int Action() override;
    void SetParameters(void *p) override; // a QList<int> of sector numbers

    QList<int> m_iSectorIndex; // from 32768 up SPIM; empty stands for the whole flash

private:
    int send(const QList<int> &protectedBefore, const QList<int> &asked);
    int readBack(const QList<int> &asked);
};
