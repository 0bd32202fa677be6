#include "operations/JobSteps.h"

#include <QThread>

#include "device/Device.h"
#include "device/Families.h"
#include "files/CFiles.h"
#include "foundation/Result.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"

namespace jobsteps {

namespace {
constexpr int openAttempts = 10;
constexpr unsigned long msBetweenAttempts = 1000;
constexpr int statusDataDiffer = 19; // of ZVBL_VERIFY
} // namespace

std::string titleWithFile(const std::string &title, const std::string &fileName) {
    return title + "------(" + fileName + ")";
}

bool fileNameOf(const std::string &path, std::string &fileName) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return false;
    fileName = path.substr(slash + 1);
    return true;
}

int percentOf(uint done, uint total) {
    return total == 0 ? 100 : static_cast<int>(100.0 * static_cast<double>(done) / static_cast<double>(total));
}

CDevice *deviceOf(const CBootLoader *control) {
    return control ? control->m_ObDevice : nullptr;
}

const Family &familyOf(const CBootLoader *control) {
    const CDevice *device = deviceOf(control);
    return device ? ::familyOf(*device) : ::familyOf(0);
}

int sectorOf(uint address, uint flashSectorSize) {
    if (address >= spimBase)
        return static_cast<int>(address - spimBase) / static_cast<int>(spimSectorSize) + firstSpimSector;
    if (address < flashBase || flashSectorSize == 0)
        return -1;
    return static_cast<int>(address - flashBase) / static_cast<int>(flashSectorSize);
}

bool isTrustedMap(const CDevice &device) {
    if (!device.m_CMapping)
        return true;
    const PMAPPING table = device.m_CMapping->GetIpMapping();
    bool hasFlash = false;
    for (DWORD i = 0; table && i < table->NbSectors; ++i) {
        const MAPPINGSECTOR &sector = table->pSectors[i];
        const bool isFlash = sector.dwStartAddress >= flashBase && sector.dwStartAddress < spimBase;
        if (isFlash && sector.dwSectorSize != device.m_ISectorSize)
            return false;
        hasFlash = hasFlash || isFlash;
    }
    return hasFlash;
}

int openImage(CProgramFile &file, const std::string &path, CDevice *device) {
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

int addressOffsetOf(CProgramFile &file, uint startAddress, uint &offset) {
    offset = 0;
    if (file.m_Type == UNKNOWN)
        return CResult::UNKNOWN_ERROR;
    if (file.m_Type != BIN)
        return 0;
    uint imageAddress = 0;
    const int result = file.GetStartAddress(&imageAddress);
    offset = startAddress - imageAddress;
    return result;
}

int verifyResult(BYTE status) {
    const int code = status;
    return CResult::Convert(code == statusDataDiffer ? CResult::PROGRAM_VERIFY_DATA_NOT_MATCHING : code);
}

bool isSlibPassword(uint password) {
    return password != 0 && password != 0xFFFFFFFF;
}

BYTE restoreTimeout(HANDLE link) {
    return SetTimeOut(link, static_cast<unsigned int>(g_shareParameter.c_timeout) * 1000);
}

} // namespace jobsteps
