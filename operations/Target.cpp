#include "operations/Target.h"

#include "device/Device.h"
#include "device/Families.h"
#include "link/BootLoader.h"

namespace target {

CDevice *deviceOf(const CBootLoader *control) {
    return control ? control->m_ObDevice : nullptr;
}

const Family &familyOf(const CBootLoader *control) {
    const CDevice *device = deviceOf(control);
    return device ? ::familyOf(*device) : ::familyOf(0);
}

} // namespace target
