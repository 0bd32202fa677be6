#pragma once

#include <QList>

#include "operations/COperation.h"

// What to erase; both lists empty stand for the whole device.
struct EraseParam {
    QList<int> m_iSectorIndex; // from 32768 up: 4096-byte sectors of SPIM; below: sectors of main flash
    QList<int> m_iBlockIndex;  // in units of the device's block size
};
typedef EraseParam ERASE_PARAM;

// Erases flash: the whole device, or the listed blocks and then the listed sectors, in list order.
class CErase : public COperation {
public:
    explicit CErase(CBootLoader *obBootLoader);

    int InitAction() override;
    // Refuses protected sectors with SYS_ERASEPROGRAM_PROTECTION before anything is erased.
    int Action() override;
    using COperation::CalculatePercent;
    // Counts one more unit as erased.
    void CalculatePercent() override;
    void SetParameters(void *p) override; // an EraseParam

    int Erase();
    // The sectors of the blocks; sizes in bytes. A block that ends at or beyond SPIM's base adds none.
    QList<int> GetNecessarySectorIndexFromBlockIndex(QList<int> BlockIndex, uint BlockSize, uint sectorSize);

    int m_iAllSectorNum = 0; // units to erase; 0 for the whole device
    int m_iAddSectorNum = 0; // units erased
    EraseParam m_parameters;

private:
    int refuseProtected(const QList<int> &sectors);
    int eraseDevice();
    int eraseBanks();
    int eraseBlocks(bool &goOn);
    int eraseSectors(bool &goOn);
    int unitDone(int status, bool &goOn);
};
