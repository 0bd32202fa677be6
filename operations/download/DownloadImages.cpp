#include <memory>
#include <mutex>
#include <utility>

#include <QSet>

#include "device/Device.h"
#include "files/CFiles.h"
#include "files/TouchedSectors.h"
#include "foundation/Result.h"
#include "link/BootLoader.h"
#include "operations/Images.h"
#include "operations/Target.h"
#include "operations/download/BlockSplit.h"
#include "operations/download/Download.h"

// The part of a download that deals with its images: opening them, where they go, and which sectors
// and blocks they touch.

namespace {

QList<int> withoutRepeats(const QList<int> &sectors) {
    QList<int> unique;
    QSet<int> seen;
    for (const int sector : sectors) {
        if (!seen.contains(sector)) {
            seen.insert(sector);
            unique.append(sector);
        }
    }
    return unique;
}

// Nobody deletes an image that a job has opened, but the verify that had it last.
CProgramFile *keptToTheEnd(std::unique_ptr<CProgramFile> file) {
    static std::mutex mutex;
    static auto &files = *new QList<CProgramFile *>;
    const std::lock_guard<std::mutex> lock(mutex);
    files.append(file.release());
    return files.last();
}

} // namespace

void CDownload::SetDownLoadFile(QList<CProgramFile *> lsProgramFile) {
    m_lsProgramFile = lsProgramFile;
}

int CDownload::OpenFile() {
    m_lsProgramFile.clear();
    for (const std::string &path : m_Parameters.m_strDownPathFile) {
        auto file = std::make_unique<CProgramFile>();
        file->SetOptimizeForOpen(m_Parameters.m_bOptimize);
        const int result = images::open(*file, path, target::deviceOf(m_obBootLoader));
        if (result != 0)
            return result;
        m_lsProgramFile.append(keptToTheEnd(std::move(file)));
    }
    if (!m_lsProgramFile.isEmpty()) {
        m_InitInfo.m_strFilePath = m_lsProgramFile.first()->m_StrPath;
        m_InitInfo.m_uiFileSize = m_lsProgramFile.first()->m_UiFileSize;
    }
    return 0;
}

int CDownload::ConfirmAddressOffset() {
    if (m_lsProgramFile.isEmpty())
        return CResult::UNKNOWN_ERROR;
    m_uiAddressOffset.clear();
    for (int i = 0; i < m_lsProgramFile.size(); ++i) {
        uint offset = 0;
        const int result = addressOffset(*m_lsProgramFile.at(i), m_Parameters.m_uiStartAddress.value(i), offset);
        if (result != 0)
            return result;
        m_uiAddressOffset.append(offset);
    }
    return 0;
}

int CDownload::FlashGetSectorIndex(uint addr, int) {
    const CDevice *device = target::deviceOf(m_obBootLoader);
    return sectorOf(addr, device ? device->m_ISectorSize : 0);
}

QList<int> CDownload::GetNecessarySectorIndex() {
    const CDevice *device = target::deviceOf(m_obBootLoader);
    if (m_lsProgramFile.isEmpty() || !device || !device->m_CMapping)
        return {};
    QList<int> sectors;
    for (int i = 0; i < m_lsProgramFile.size(); ++i) {
        CProgramFile &file = *m_lsProgramFile.at(i);
        sectors += touchedSectors(file, m_Parameters.m_uiStartAddress.value(i), m_uiAddressOffset.value(i),
                                  device->m_ISectorSize);
    }
    if (m_Parameters.m_bWriteSN)
        sectors.append(FlashGetSectorIndex(m_Parameters.m_uiSNAddress, device->m_IFlashSize));
    return withoutRepeats(sectors);
}

void CDownload::GetNecessaryBlockIndexAndSectorIndex(QList<int> sectorIndex, QList<int> outsectorIndex,
                                                     QList<int> outblockIndex, uint BlockSize, uint sectorSize) {
    const BlockSplit split = splitIntoBlocks(sectorIndex, BlockSize, sectorSize);
    split.sectors.isEmpty() ? outsectorIndex.clear() : outsectorIndex.append(split.sectors);
    split.blocks.isEmpty() ? outblockIndex.clear() : outblockIndex.append(split.blocks);
}
