#include "link/BootLoader.h"

#include <type_traits>

#include "files/UserSystemDataFile.h"
#include "link/CCom.h"
#include "usersystemdata/CUserSystemData.h"

static_assert(!std::is_polymorphic<CBootLoader>::value, "jobs take their port tag from the first word");

CBootLoader::CBootLoader(CCom *hCCom, char typev)
    : m_handle(hCCom->m_handle), m_pCmds(new Commands()), m_InterfaceType(typev), m_hCCOM(hCCom) {}

CBootLoader::~CBootLoader() {
    FreeOperation();
    delete m_pCmds;
    delete m_ObUserSystemData;
    delete m_ObUserSystemDataFile;
}

void CBootLoader::SetI2CSettings(uint uiAddr, ulong ulRate, BYTE bDutyCylce) {
    m_uiAddr = uiAddr;
    m_ulRate = ulRate;
    m_bDutyCycle = bDutyCylce;
}

void CBootLoader::SetCANSettings(uint uiCANSpeed) {
    m_uiCANSpeed = uiCANSpeed;
}

void CBootLoader::SetSPISettings(ulong ulSPISpeed) {
    m_ulSPISpeed = ulSPISpeed;
}
