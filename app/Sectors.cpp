#include "app/Memory.h"
#include "app/SubOptions.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

const CDevice *deviceOf(const CCom *obCCom) {
    return hasBootLoader(obCCom) ? obCCom->m_ObBootLoader->m_ObDevice : nullptr;
}

int flashSectors(const CDevice &device) {
    if (device.m_ISectorSize == 0) {
        return 0;
    }
    return static_cast<int>((static_cast<unsigned int>(device.m_IFlashSize) << 10) / device.m_ISectorSize);
}

} // namespace

SectorRange parseSectorRange(const std::string &word) {
    // MEANT: a word without a hyphen is its own begin, and its end is the word without its last character.
    const std::size_t hyphen = word.rfind('-');
    return {g_shareParameter.StringToInt32(word.substr(0, hyphen), 10),
            g_shareParameter.StringToInt32(word.substr(hyphen + 1, word.size() - 1), 10)};
}

QList<int> sectorsOf(const SectorRange &range) {
    QList<int> sectors;
    for (long sector = range.begin; sector <= range.end; ++sector) {
        sectors.append(static_cast<int>(sector));
    }
    return sectors;
}

int familyOf(const CCom *obCCom) {
    const CDevice *device = deviceOf(obCCom);
    return device == nullptr ? 0 : g_shareParameter.StringToInt32(device->m_StrSerial, 16);
}

bool IsSectorsValid(int beginN, int endN, const CCom *obCCom) {
    const CDevice *device = deviceOf(obCCom);
    if (beginN < 0 || endN < beginN || device == nullptr) {
        return false;
    }
    if (!device->m_haveBank3) {
        return endN < flashSectors(*device);
    }
    // MEANT: with SPIM enabled these four families take any number and all others none.
    const int iserial = familyOf(obCCom);
    return iserial == ZV32F403_2 || iserial == ZV32F413 || iserial == ZV32F403A || iserial == ZV32F407;
}

QList<int> GetAllSectors(const CCom *obCCom) {
    const CDevice *device = deviceOf(obCCom);
    return device == nullptr ? QList<int>() : sectorsOf({0, flashSectors(*device) - 1});
}
