#include "operations/Images.h"

#include <QThread>

#include "device/Device.h"
#include "files/CFiles.h"
#include "foundation/Result.h"
#include "operations/Target.h"

namespace images {

namespace {
constexpr int openAttempts = 10;
constexpr unsigned long msBetweenAttempts = 1000;
} // namespace

int open(CProgramFile &file, const std::string &path, CDevice *device) {
    int result = CResult::UNKNOWN_ERROR;
    // Another program may still be writing the file.
    for (int attempt = 0; attempt < openAttempts; ++attempt) {
        result = file.Open(path, device);
        if (result == 0)
            return file.GetElementCount() == 0 ? CResult::FILES_EMPTY : 0;
        QThread::msleep(msBetweenAttempts);
    }
    return result;
}

bool areCutAsErased(const CDevice &device) {
    if (!device.m_CMapping)
        return true;
    const PMAPPING table = device.m_CMapping->GetIpMapping();
    bool hasFlash = false;
    for (DWORD i = 0; table && i < table->NbSectors; ++i) {
        const MAPPINGSECTOR &sector = table->pSectors[i];
        const bool isFlash = sector.dwStartAddress >= target::flashBase && sector.dwStartAddress < target::spimBase;
        if (isFlash && sector.dwSectorSize != device.m_ISectorSize)
            return false;
        hasFlash = hasFlash || isFlash;
    }
    return hasFlash;
}

} // namespace images
