#include "operations/Target.h"

#include "device/Device.h"
#include "device/Families.h"
#include "device/SpimSectors.h"
#include "link/BootLoader.h"

namespace target {

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

} // namespace target
