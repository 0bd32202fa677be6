#include "app/Sectors.h"

#include "device/Device.h"
#include "device/Families.h"
#include "foundation/ShareParameter.h"

namespace {

// As many SPIM sectors of 4096 bytes as 32 bits can address. More would fill the memory and reach no chip.
constexpr qint64 mostSectors = 1 << 20;

int flashSectors(const CDevice &device) {
    if (device.m_ISectorSize == 0)
        return 0;
    return static_cast<int>((static_cast<unsigned int>(device.m_IFlashSize) << 10) / device.m_ISectorSize);
}

void appendNumbers(const SectorRange &range, QList<int> &sectors) {
    for (qint64 sector = range.begin; sector <= range.end; ++sector)
        sectors.append(static_cast<int>(sector));
}

} // namespace

SectorRange parseSectorRange(const std::string &word) {
    // MEANT: a word without a hyphen is its own begin, and its end is the word without its last character.
    const std::size_t hyphen = word.rfind('-');
    return {g_shareParameter.StringToInt32(word.substr(0, hyphen), 10),
            g_shareParameter.StringToInt32(word.substr(hyphen + 1, word.size() - 1), 10)};
}

bool IsSectorsValid(int beginN, int endN, const CDevice *device) {
    if (beginN < 0 || endN < beginN || device == nullptr)
        return false;
    if (!device->m_haveBank3)
        return endN < flashSectors(*device);
    // MEANT: with SPIM enabled some families take any number and all others none.
    return familyOf(*device).has(takesAnySpimSector);
}

bool appendSectors(const std::string &word, const CDevice *device, QList<int> &sectors) {
    const SectorRange range = parseSectorRange(word);
    const qint64 count = static_cast<qint64>(range.end) - range.begin + 1;
    if (!IsSectorsValid(range.begin, range.end, device) || sectors.size() + count > mostSectors)
        return false;
    appendNumbers(range, sectors);
    return true;
}

QList<int> GetAllSectors(const CDevice *device) {
    QList<int> sectors;
    if (device != nullptr)
        appendNumbers({0, flashSectors(*device) - 1}, sectors);
    return sectors;
}
