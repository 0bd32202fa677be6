#include "foundation/ShareParameter.h"
#include "link/CCom.h"
#include "link/ZVBLLIB.h"

namespace {

constexpr signed char mostDevices = 99;

} // namespace

void CComManager::SetInterfaceType(char typev) {
    m_InterfaceType = typev;
    TARGET_SetComIntType(static_cast<BYTE>(typev));
}

QList<CCom> CComManager::getCom(int nPortNum) {
    if (nPortNum != -1)
        m_nDefPortNums = nPortNum;
    QList<CCom> links;
    if (m_InterfaceType == INTERFACE_USART)
        return links;
    for (int port = 1; port <= m_nDefPortNums; ++port)
        links.append(CCom(port, static_cast<char>(m_InterfaceType), nullptr));
    return links;
}

bool CComManager::IsCanbeOpen(int iPortNum) {
    if (m_InterfaceType != INTERFACE_USART)
        return true;
    HANDLE handle = nullptr;
    SetCOMSettings(&handle, iPortNum, nullptr, 115200, 8, 2, 1.0F);
    if (Interface_is_Open(handle) == 1)
        return true;
    if (Interface_Open(handle) != 0)
        return false;
    Interface_Close(handle);
    return true;
}

int CComManager::CountDfuDevices() {
    signed char count = mostDevices;
    unsigned short vendorIds[255] = {};
    unsigned short productIds[255] = {};
    TDeviceInfo info = {};
    return ZVBL_GetZVDeviceList(&count, vendorIds, productIds, &info) == 0 && count > 0 ? count : 0;
}

bool CComManager::InitZVDFUDeviceList() {
    if (g_shareParameter.m_InterfaceType != INTERFACE_USBDFU)
        return true;
    CComManager().SetInterfaceType(INTERFACE_USBDFU);
    return CountDfuDevices() > 0;
}
