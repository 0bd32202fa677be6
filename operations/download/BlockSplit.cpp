#include "operations/download/BlockSplit.h"

namespace {

bool isBlockBorder(int sector, uint BlockSize, uint sectorSize) {
    return static_cast<uint>(sector) * sectorSize % BlockSize == 0;
}

void splitRun(const QList<int> &run, uint BlockSize, uint sectorSize, BlockSplit &split) {
    bool blockBeginFlag = isBlockBorder(run.first(), BlockSize, sectorSize);
    QList<int> pending;
    for (const int sector : run) {
        const bool endsBlock = isBlockBorder(sector + 1, BlockSize, sectorSize);
        if (!blockBeginFlag) {
            split.sectors.append(sector);
            blockBeginFlag = endsBlock;
        } else if (endsBlock) {
            split.blocks.append(static_cast<int>(static_cast<uint>(sector) * sectorSize / BlockSize));
            pending.clear();
        } else {
            pending.append(sector);
        }
    }
    split.sectors += pending;
}

} // namespace

BlockSplit splitIntoBlocks(const QList<int> &sectorIndex, uint BlockSize, uint sectorSize) {
    BlockSplit split;
    if (BlockSize == 0) {
        split.sectors = sectorIndex;
        return split;
    }
    QList<int> run;
    for (const int sector : sectorIndex) {
        if (!run.isEmpty() && sector != run.last() + 1) {
            splitRun(run, BlockSize, sectorSize, split);
            run.clear();
        }
        run.append(sector);
    }
    if (!run.isEmpty())
        splitRun(run, BlockSize, sectorSize, split);
    return split;
}
