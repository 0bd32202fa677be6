#pragma once

#include <QList>
#include <QtGlobal>

// Turns sectors into whole blocks where it can; sizes in bytes. A run of successive sectors gives the
// blocks that lie wholly in it; what is before the first and after the last stays sectors.
struct BlockSplit {
    QList<int> sectors;
    QList<int> blocks;
};
BlockSplit splitIntoBlocks(const QList<int> &sectorIndex, uint BlockSize, uint sectorSize);
