#include "link/CCom.h"

#include "foundation/Result.h"
#include "link/BootLoader.h"
#include "link/ZVBLLIB.h"

CCom::CCom() {
    InitSetting();
}

CCom::CCom(int iPortNum, char typev, const char *strPortName) {
    InitSetting();
    m_InterfaceType = typev;
    if (m_InterfaceType == INTERFACE_USBDFU) {
        m_iPortNum = iPortNum - 1;
        m_handle = reinterpret_cast<HANDLE>(static_cast<qintptr>(m_iPortNum));
        return;
    }
    m_iPortNum = iPortNum;
    m_strPortName = strPortName == nullptr ? "" : strPortName;
    SetSettings(m_iSpeedInBaud, m_iBit, m_iParity);
}

CCom::CCom(const CCom &other) {
    copySettings(other);
}

CCom &CCom::operator=(const CCom &other) {
    if (this != &other) {
        dropBootLoader();
        copySettings(other);
    }
    return *this;
}

CCom::~CCom() {
    dropBootLoader();
}

void CCom::copySettings(const CCom &other) {
    m_handle = other.m_handle;
    m_iPortNum = other.m_iPortNum;
    m_strPortName = other.m_strPortName;
    m_iSpeedInBaud = other.m_iSpeedInBaud;
    m_iBit = other.m_iBit;
    m_iParity = other.m_iParity;
    m_fStopBit = other.m_fStopBit;
    m_iTimeOut = other.m_iTimeOut;
    m_lsSupSpeedInBaud = other.m_lsSupSpeedInBaud;
    m_lsSupiBit = other.m_lsSupiBit;
    m_lsSupParity = other.m_lsSupParity;
    m_lsSupiTimeOut = other.m_lsSupiTimeOut;
    m_isDownLoaded = other.m_isDownLoaded;
    m_isIniting = other.m_isIniting;
    m_emBootSwitch = other.m_emBootSwitch;
    m_AutoSwitchIndex = other.m_AutoSwitchIndex;
    m_InterfaceType = other.m_InterfaceType;
}

void CCom::dropBootLoader() {
    CBootLoader::Destroy(m_ObBootLoader);
    m_ObBootLoader = nullptr;
}

void CCom::InitSetting() {
    dropBootLoader();
    m_handle = nullptr;
    m_iSpeedInBaud = 115200;
    m_iBit = 8;
    m_iParity = 2;
    m_fStopBit = 1.0F;
    m_iTimeOut = 5;
    m_emBootSwitch = MANUAL;
    m_AutoSwitchIndex = 0;
    InitSupportSpeedInBaud();
    InitSupportBit();
    InitSupportParity();
    InitSupportTimeOut();
}

void CCom::InitSupportSpeedInBaud() {
    if (m_InterfaceType == INTERFACE_USART)
        m_lsSupSpeedInBaud = {1200, 2400, 4800, 9600, 14400, 19200, 38400, 56000, 57600, 115200, 128000, 256000};
}

void CCom::InitSupportBit() {
    if (m_InterfaceType == INTERFACE_USART)
        m_lsSupiBit = {8};
}

void CCom::InitSupportParity() {
    if (m_InterfaceType == INTERFACE_USART)
        m_lsSupParity = {0, 1, 2};
}

void CCom::InitSupportTimeOut() {
    if (m_InterfaceType == INTERFACE_USART)
        m_lsSupiTimeOut = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 20, 30, 40, 50, 60, 70, 80, 90, 120};
}

bool CCom::hasLineSettings() const {
    return m_InterfaceType == INTERFACE_USART || m_InterfaceType == INTERFACE_I2C || m_InterfaceType == INTERFACE_CAN ||
           m_InterfaceType == INTERFACE_SPI;
}

int CCom::SetSettings(int speedInBaud, int nbBit, int parity) {
    if (!hasLineSettings())
        return CResult::SUCCESS;
    const int status =
        SetCOMSettings(&m_handle, m_iPortNum, m_strPortName.c_str(), speedInBaud, nbBit, parity, m_fStopBit);
    if (status == 0) {
        m_iSpeedInBaud = speedInBaud;
        m_iBit = nbBit;
        m_iParity = parity;
    }
    return CResult::Convert(status);
}

void CCom::GetSetting(int, int, int) {}

void CCom::GetTimeOut(int) {}

int CCom::SetComTimeOut(int iTimeOut) {
    if (!hasLineSettings())
        return CResult::SUCCESS;
    const int status = SetTimeOut(m_handle, static_cast<unsigned int>(iTimeOut));
    if (status == 0)
        m_iTimeOut = iTimeOut;
    return CResult::Convert(status);
}

int CCom::Open() {
    const int status = Interface_Open(m_handle);
    if (status == 0) {
        dropBootLoader();
        m_ObBootLoader = new CBootLoader(this, static_cast<char>(m_InterfaceType));
    }
    return CResult::Convert(status);
}

int CCom::Close() {
    dropBootLoader();
    return CResult::Convert(static_cast<int>(Interface_Close(m_handle)));
}

bool CCom::IsOpen() const {
    return Interface_is_Open(m_handle) == 1;
}

signed char CCom::GetInterfaceType() const {
    return m_InterfaceType;
}
