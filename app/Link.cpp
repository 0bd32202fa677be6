#include "app/Link.h"

#include "link/BootLoader.h"
#include "link/CCom.h"

CCom *m_obCCom = nullptr;

void closeLink(CCom *obCCom) {
    if (obCCom != nullptr && obCCom->IsOpen())
        obCCom->Close();
}

bool hasBootLoader(const CCom *obCCom) {
    return obCCom != nullptr && obCCom->m_ObBootLoader != nullptr;
}

const CDevice *deviceOf(const CCom *obCCom) {
    return hasBootLoader(obCCom) ? obCCom->m_ObBootLoader->m_ObDevice : nullptr;
}

const Family &familyOf(const CCom *obCCom) {
    const CDevice *device = deviceOf(obCCom);
    return device == nullptr ? familyOf(0) : familyOf(*device);
}
