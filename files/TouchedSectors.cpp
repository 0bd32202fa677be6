#include "files/TouchedSectors.h"

#include "device/SpimSectors.h"
#include "files/CFiles.h"
#include "foundation/Result.h"
#include "foundation/ShareParameter.h"

namespace {

constexpr DWORD lastFlashAddress = ZVCHIP_SPIM_BASE_ADDRESS - 1;

// MEANT: one element counts as one sector from the start address on, wherever the elements lie.
QList<int> sectorsByCount(int first, int count) {
    QList<int> sectors;
    for (int i = 0; i < count; ++i)
        sectors.append(first + i);
    return sectors;
}

// The file library cuts elements at sector borders, so the first byte tells the sector.
QList<int> sectorsByElement(CProgramFile &file, unsigned int offset, unsigned int flashSectorSize) {
    QList<int> sectors;
    file.ResetElement();
    while (const PIMAGEELEMENT element = file.GetElement()) {
        const DWORD moved = element->dwAddress + offset;
        // MEANT: the offset counts only where it leads to SPIM.
        const DWORD address = moved > lastFlashAddress ? moved : element->dwAddress;
        sectors.append(sectorOf(static_cast<unsigned int>(address), flashSectorSize));
    }
    file.ResetElement();
    return sectors;
}

} // namespace

int sectorOf(unsigned int address, unsigned int flashSectorSize) {
    if (address >= ZVCHIP_SPIM_BASE_ADDRESS)
        return static_cast<int>(address - ZVCHIP_SPIM_BASE_ADDRESS) / static_cast<int>(spimSectorSize) +
               firstSpimSector;
    if (address < ZVCHIP_FLASH_BASE_ADDRESS || flashSectorSize == 0)
        return -1;
    return static_cast<int>(address - ZVCHIP_FLASH_BASE_ADDRESS) / static_cast<int>(flashSectorSize);
}

int addressOffset(CProgramFile &file, unsigned int startAddress, unsigned int &offset) {
    offset = 0;
    if (file.m_Type == UNKNOWN)
        return CResult::UNKNOWN_ERROR;
    if (file.m_Type != BIN)
        return 0;
    unsigned int imageAddress = 0;
    const int result = file.GetStartAddress(&imageAddress);
    offset = startAddress - imageAddress;
    return result;
}

QList<int> touchedSectors(CProgramFile &file, unsigned int startAddress, unsigned int offset,
                          unsigned int flashSectorSize) {
    if (file.m_Type == BIN && startAddress < ZVCHIP_SPIM_BASE_ADDRESS)
        return sectorsByCount(sectorOf(startAddress, flashSectorSize), file.GetElementCount());
    return sectorsByElement(file, file.m_Type == BIN ? offset : 0, flashSectorSize);
}
