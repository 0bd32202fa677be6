#include "tests/link/LinkTest.h"

class CComManagerTest : public LinkTest {};

TEST_F(CComManagerTest, SetInterfaceTypeTellsTheLibrary) {
    CComManager manager;
    EXPECT_EQ(manager.m_nDefPortNums, 1024);
    manager.SetInterfaceType(SPI);
    EXPECT_EQ(manager.m_InterfaceType, SPI);
    EXPECT_EQ(library.log(), "TARGET_SetComIntType type=4\n");
}

TEST_F(CComManagerTest, ListsUsbDfuDevicesByIndex) {
    CComManager manager;
    manager.SetInterfaceType(USBDFU);
    library.clearLog();
    const QList<CCom> links = manager.getCom(3);
    ASSERT_EQ(links.size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(links[i].m_handle, reinterpret_cast<HANDLE>(static_cast<qintptr>(i)));
        EXPECT_EQ(links[i].m_iPortNum, i);
    }
    EXPECT_EQ(manager.m_nDefPortNums, 3);
    EXPECT_EQ(manager.getCom(-1).size(), 3) << "-1 keeps the number";
    EXPECT_TRUE(manager.getCom(0).isEmpty());
    EXPECT_EQ(library.log(), "");
}

TEST_F(CComManagerTest, ListsNoUsartPort) {
    CComManager manager;
    manager.SetInterfaceType(USART);
    for (const int ports : {3, -1, 0})
        EXPECT_TRUE(manager.getCom(ports).isEmpty());
    EXPECT_EQ(manager.m_nDefPortNums, 0);
}

TEST_F(CComManagerTest, ListsOtherLinksByPortNumber) {
    CComManager manager;
    manager.SetInterfaceType(I2C);
    const QList<CCom> links = manager.getCom(2);
    ASSERT_EQ(links.size(), 2);
    EXPECT_EQ(links[1].m_iPortNum, 2);
    EXPECT_EQ(links[1].m_strPortName, "");
}

TEST_F(CComManagerTest, AUsartPortCanBeOpenedOrNot) {
    CComManager manager;
    manager.SetInterfaceType(USART);
    library.clearLog();
    EXPECT_TRUE(manager.IsCanbeOpen(7));
    EXPECT_EQ(library.log(), "SetCOMSettings h=0 port=7 name=null baud=115200 bits=8 parity=2 stop=1.0\n"
                             "Interface_is_Open h=1001\nInterface_Open h=1001\nInterface_Close h=1001\n");
    library.clearLog();
    library.script("Interface_is_Open open=1");
    EXPECT_TRUE(manager.IsCanbeOpen(7));
    EXPECT_EQ(library.log(), "SetCOMSettings h=0 port=7 name=null baud=115200 bits=8 parity=2 stop=1.0\n"
                             "Interface_is_Open h=1002\n");
    library.script("Interface_Open status=3");
    EXPECT_FALSE(manager.IsCanbeOpen(7));
}

TEST_F(CComManagerTest, EveryOtherPortCanBeOpened) {
    CComManager manager;
    manager.SetInterfaceType(CAN);
    library.clearLog();
    EXPECT_TRUE(manager.IsCanbeOpen(7));
    EXPECT_EQ(library.log(), "");
}

TEST_F(CComManagerTest, DeviceListOnAnotherLinkIsAlwaysThere) {
    for (const char type : {0, 2, 3}) {
        g_shareParameter.m_InterfaceType = type;
        EXPECT_TRUE(CComManager::InitZVDFUDeviceList());
    }
    EXPECT_EQ(library.log(), "");
}

TEST_F(CComManagerTest, DeviceListOnUsbDfu) {
    g_shareParameter.m_InterfaceType = USBDFU;
    EXPECT_TRUE(CComManager::InitZVDFUDeviceList());
    EXPECT_EQ(library.log(), "TARGET_SetComIntType type=1\nZVBL_GetZVDeviceList count=99\n");
    for (const char *answer : {"count=0", "count=-1", "status=4"}) {
        library.script(std::string("ZVBL_GetZVDeviceList ") + answer);
        EXPECT_FALSE(CComManager::InitZVDFUDeviceList()) << answer;
    }
}
