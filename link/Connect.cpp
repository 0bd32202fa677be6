// Bringing the bootloader into its command state, link by link.

#include "foundation/Result.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

int CBootLoader::Connect() {
    m_bHasJumpToUserProgram = false;
    const int status = startBootloader();
    if (status != 0)
        return CResult::Convert(status);
    char scratch = 0;
    return Get(&scratch, m_pCmds);
}

BYTE CBootLoader::startBootloader() {
    switch (m_InterfaceType) {
    case INTERFACE_USART: return startUsart();
    case INTERFACE_I2C: return ZVBL_Init_BL(m_handle, static_cast<unsigned short>(m_uiAddr), m_ulRate, m_bDutyCycle);
    case INTERFACE_CAN: return startCan();
    case INTERFACE_SPI: return ZVBL_Init_BL(m_handle, 0, m_ulSPISpeed, 0);
    default: // a USB DFU device is in its command state as soon as it is there
        return 0;
    }
}

BYTE CBootLoader::startUsart() {
    // The operator may have reset the chip by hand, so a board that is not wired for it still gets its try.
    if (m_hCCOM != nullptr)
        m_hCCOM->SetBootOption();
    const BYTE status = ZVBL_Init_BL(m_handle, 0, 0, 0);
    if (status == 0)
        ZVBL_ZV32ISP_TOOL(m_handle); // older bootloaders refuse it
    return status;
}

BYTE CBootLoader::startCan() {
    const BYTE status = ZVBL_Init_BL(m_handle, 0, 2, 0);
    return status != 0 ? status : ZVBL_SetSpeed(m_handle, m_uiCANSpeed);
}

int CBootLoader::Get(char *scratch, Commands *commands) {
    return CResult::Convert(static_cast<int>(ZVBL_GET(m_handle, reinterpret_cast<BYTE *>(scratch), commands)));
}

bool CBootLoader::IsNeedReeonnect() {
    std::string version;
    std::string bid;
    return GetVersion(version, bid) != CResult::SUCCESS;
}
