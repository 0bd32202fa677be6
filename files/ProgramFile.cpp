#include "files/ProgramFile.h"

#include "device/SpimSectors.h"
#include "foundation/Result.h"

namespace {

bool hasMap(const CDevice *device) {
    return device != nullptr && device->m_CMapping != nullptr && device->m_CMapping->GetIpMapping() != nullptr;
}

// Sectors of main flash, of 1 KB each if the first one is and of 2 KB otherwise. MEANT: 4 KB sectors
// count as 2 KB.
int flashSectorsOf(const CDevice &device) {
    const CMapping &map = *device.m_CMapping;
    const bool oneKilobyte =
        map.m_AMappingSectorNum != 0 && map.m_AMappingSector != nullptr && map.m_AMappingSector[0].dwSectorSize == 1024;
    return oneKilobyte ? device.m_IFlashSize : device.m_IFlashSize / 2;
}

} // namespace

void CProgramFile::SetOptimizeForOpen(bool bOptimize) {
    m_bOptimize = bOptimize;
}

void CProgramFile::SetSectorIndexsForCreate(QList<int> aSectorIndexs, int sectorNum) {
    m_aSectorIndexs = aSectorIndexs;
    m_iSectorNum = sectorNum;
}

void CProgramFile::SetBank3SizeForCreate(int isize) {
    m_bank3SzieForCreate = isize;
}

bool CProgramFile::IsCreateAllSectors() {
    return m_aSectorIndexs.isEmpty() || m_iSectorNum < 1;
}

int CProgramFile::Open(std::string strPath, CDevice *obDevice) {
    CFiles::Open(strPath, obDevice);
    if (!hasMap(obDevice))
        return CResult::UNKNOWN_ERROR;
    unsigned int status = FILES_ImageFromFile(strPath.c_str(), &m_pImage, 1);
    if (status != FILES_NOERROR)
        return CResult::Convert(status);
    status = FILES_SetImageName(m_pImage, strPath.c_str());
    if (status != FILES_NOERROR)
        return CResult::Convert(status);
    // MEANT: an image that cannot be cut is used as it is.
    FILES_FilterImageForOperation(m_pImage, obDevice->m_CMapping->GetIpMapping(), 2, m_bOptimize ? 1 : 0);
    unsigned int count = 0;
    status = FILES_GetImageNbElement(m_pImage, &count);
    if (status == FILES_NOERROR)
        status = collectAll(count);
    if (status == FILES_NOERROR)
        m_StrPath = strPath;
    return CResult::Convert(status);
}

int CProgramFile::Create(CDevice *obDevice) {
    CFiles::Create(obDevice);
    if (!hasMap(obDevice))
        return CResult::UNKNOWN_ERROR;
    unsigned int status = FILES_CreateImageFromMapping(&m_pImage, obDevice->m_CMapping->GetIpMapping(),
                                                       static_cast<unsigned int>(m_bank3SzieForCreate));
    if (status != FILES_NOERROR)
        return CResult::Convert(status);
    unsigned int count = 0;
    status = FILES_GetImageNbElement(m_pImage, &count);
    if (status != FILES_NOERROR)
        return CResult::Convert(status);
    if (IsCreateAllSectors())
        return CResult::Convert(collectAll(count));
    status = collectChosen(count, flashSectorsOf(*obDevice));
    return CResult::Convert(status == FILES_NOERROR ? replaceImage() : status);
}

int CProgramFile::SetElement() {
    return CFiles::SetElement(!IsCreateAllSectors());
}

unsigned int CProgramFile::collectAll(unsigned int count) {
    unsigned int status = FILES_NOERROR;
    for (unsigned int i = 0; status == FILES_NOERROR && i < count; ++i)
        status = appendElement(i);
    return status;
}

// One walk through the elements: a sector number that is lower than one before it is not found, and
// those after it with it.
unsigned int CProgramFile::collectChosen(unsigned int count, int flashSectorNum) {
    const int shift = firstSpimSector - flashSectorNum;
    const int wanted = qMin(m_iSectorNum, m_aSectorIndexs.count());
    unsigned int status = FILES_NOERROR;
    int chosen = 0;
    for (unsigned int i = 0; status == FILES_NOERROR && i < count && chosen < wanted; ++i) {
        const int sector = m_aSectorIndexs.at(chosen);
        const qint64 element = sector < firstSpimSector ? sector : qint64(sector) - shift;
        if (element == i) {
            ++chosen;
            status = appendElement(i);
        }
    }
    return status;
}

// The chosen elements stand in the list alone; an empty image takes them one by one as they are filled.
unsigned int CProgramFile::replaceImage() {
    const unsigned int status = FILES_DestroyImage(&m_pImage);
    m_pImage = nullptr;
    return status == FILES_NOERROR ? FILES_CreateImage(&m_pImage, 1) : status;
}
