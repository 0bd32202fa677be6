#include "tests/link/LinkTest.h"

class CComTest : public LinkTest {};

TEST_F(CComTest, DefaultsOfALinkWithoutPort) {
    const CCom link;
    EXPECT_EQ(link.m_handle, nullptr);
    EXPECT_EQ(link.m_ObBootLoader, nullptr);
    EXPECT_EQ(link.m_iSpeedInBaud, 115200);
    EXPECT_EQ(link.m_iBit, 8);
    EXPECT_EQ(link.m_iParity, 2);
    EXPECT_EQ(link.m_fStopBit, 1.0F);
    EXPECT_EQ(link.m_iTimeOut, 5);
    EXPECT_EQ(link.m_emBootSwitch, MANUAL);
    EXPECT_EQ(link.m_AutoSwitchIndex, 0);
    EXPECT_EQ(library.log(), "");
}

TEST_F(CComTest, SupportListsOfUsart) {
    const CCom link;
    EXPECT_EQ(link.m_lsSupSpeedInBaud,
              (QList<int>{1200, 2400, 4800, 9600, 14400, 19200, 38400, 56000, 57600, 115200, 128000, 256000}));
    EXPECT_EQ(link.m_lsSupiBit, QList<int>{8});
    EXPECT_EQ(link.m_lsSupParity, (QList<int>{0, 1, 2}));
    EXPECT_EQ(link.m_lsSupiTimeOut, (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 20, 30, 40, 50, 60, 70, 80, 90, 120}));
}

TEST_F(CComTest, OnlyUsartHasSupportLists) {
    CCom link;
    link.m_InterfaceType = I2C;
    link.m_lsSupSpeedInBaud = link.m_lsSupiBit = link.m_lsSupParity = link.m_lsSupiTimeOut = {};
    link.InitSetting();
    EXPECT_TRUE(link.m_lsSupSpeedInBaud.isEmpty());
    EXPECT_TRUE(link.m_lsSupiBit.isEmpty());
    EXPECT_TRUE(link.m_lsSupParity.isEmpty());
    EXPECT_TRUE(link.m_lsSupiTimeOut.isEmpty());
}

TEST_F(CComTest, ALinkThatIsAssignedToItselfKeepsItsControl) {
    CCom &link = open(USART);
    const CBootLoader *control = link.m_ObBootLoader;
    const CCom &same = link;
    link = same;
    EXPECT_EQ(link.m_ObBootLoader, control);
    EXPECT_TRUE(link.IsOpen());
}

TEST_F(CComTest, ConstructorMakesTheLinkWithTheDefaultSettings) {
    for (const char type : {USART, I2C, CAN, SPI}) {
        library.clearLog();
        ZvblDouble::reset();
        const CCom link(12, type, "ttyS12");
        EXPECT_EQ(link.m_iPortNum, 12);
        EXPECT_EQ(link.m_strPortName, "ttyS12");
        EXPECT_EQ(link.GetInterfaceType(), type);
        EXPECT_EQ(link.m_handle, reinterpret_cast<HANDLE>(0x1001));
        EXPECT_EQ(library.log(), "SetCOMSettings h=0 port=12 name=\"ttyS12\" baud=115200 bits=8 parity=2 stop=1.0\n");
    }
}

TEST_F(CComTest, ConstructorOnUsbDfuCallsNothing) {
    const CCom link(3, USBDFU, "ignored");
    EXPECT_EQ(link.m_handle, reinterpret_cast<HANDLE>(2));
    EXPECT_EQ(link.m_iPortNum, 2);
    EXPECT_EQ(link.m_strPortName, "");
    EXPECT_EQ(library.log(), "");
    EXPECT_EQ(CCom(0, USBDFU, nullptr).m_handle, reinterpret_cast<HANDLE>(-1L)) << "sign-extended";
}

TEST_F(CComTest, ConstructorDropsAFailureOfTheSettings) {
    library.script("SetCOMSettings status=3");
    const CCom link(1, USART, nullptr);
    EXPECT_EQ(link.m_handle, nullptr);
    EXPECT_EQ(library.log(), "SetCOMSettings h=0 port=1 name=\"\" baud=115200 bits=8 parity=2 stop=1.0\n");
}

TEST_F(CComTest, SetSettingsKeepsWhatTheLibraryTook) {
    CCom &link = open(USART);
    EXPECT_EQ(link.SetSettings(9600, 7, 0), CResult::SUCCESS);
    EXPECT_EQ(library.log(), "SetCOMSettings h=1001 port=1 name=\"port\" baud=9600 bits=7 parity=0 stop=1.0\n");
    library.script("SetCOMSettings status=33");
    EXPECT_EQ(link.SetSettings(4800, 8, 1), CResult::PROGRAM_INPUT_PARAMS_ERROR);
    EXPECT_EQ(link.m_iSpeedInBaud, 9600);
    EXPECT_EQ(link.m_iBit, 7);
    EXPECT_EQ(link.m_iParity, 0);
}

TEST_F(CComTest, UsbDfuAndUnknownTypesHaveNoSettings) {
    for (const char type : {1, 5, -1}) {
        CCom link(1, USBDFU, nullptr);
        link.m_InterfaceType = type;
        EXPECT_EQ(link.SetSettings(9600, 7, 0), CResult::SUCCESS);
        EXPECT_EQ(link.SetComTimeOut(1000), CResult::SUCCESS);
        EXPECT_EQ(link.m_iSpeedInBaud, 115200);
        EXPECT_EQ(link.m_iTimeOut, 5);
    }
    EXPECT_EQ(library.log(), "");
}

TEST_F(CComTest, SetComTimeOutKeepsWhatTheLibraryTook) {
    CCom &link = open(CAN);
    EXPECT_EQ(link.SetComTimeOut(1000), CResult::SUCCESS);
    EXPECT_EQ(link.m_iTimeOut, 1000);
    EXPECT_EQ(library.log(), "SetTimeOut h=1001 ms=1000\n");
    library.script("SetTimeOut status=4");
    EXPECT_EQ(link.SetComTimeOut(7), CResult::COM_SEND_FAIL);
    EXPECT_EQ(link.m_iTimeOut, 1000);
}

TEST_F(CComTest, GettersByValueHandNothingBack) {
    const CCom untouched;
    CCom link;
    int speed = 1;
    link.GetSetting(speed, speed, speed);
    link.GetTimeOut(speed);
    EXPECT_EQ(speed, 1);
    EXPECT_EQ(link.m_iSpeedInBaud, untouched.m_iSpeedInBaud);
}

TEST_F(CComTest, OpenMakesTheBootloaderControlAndCloseDestroysItFirst) {
    CCom link(1, SPI, "spidev0.0");
    library.clearLog();
    EXPECT_FALSE(link.IsOpen());
    EXPECT_EQ(link.Open(), CResult::SUCCESS);
    EXPECT_TRUE(link.IsOpen());
    ASSERT_NE(link.m_ObBootLoader, nullptr);
    EXPECT_EQ(link.m_ObBootLoader->m_handle, link.m_handle);
    EXPECT_EQ(link.m_ObBootLoader->m_hCCOM, &link);
    EXPECT_EQ(link.m_ObBootLoader->m_InterfaceType, SPI);
    EXPECT_EQ(link.Close(), CResult::SUCCESS);
    EXPECT_EQ(link.m_ObBootLoader, nullptr);
    EXPECT_FALSE(link.IsOpen());
    EXPECT_EQ(library.log(), "Interface_is_Open h=1001\nInterface_Open h=1001\nInterface_is_Open h=1001\n"
                             "Interface_Close h=1001\nInterface_is_Open h=1001\n");
}

TEST_F(CComTest, OpenThatFailsMakesNoBootloaderControl) {
    CCom link(1, USART, "ttyS0");
    library.script("Interface_Open status=3\nInterface_Close status=1");
    EXPECT_EQ(link.Open(), CResult::COM_CANT_OPEN_COM);
    EXPECT_EQ(link.m_ObBootLoader, nullptr);
    EXPECT_EQ(link.Close(), CResult::COM_NOT_OPENED);
}

TEST_F(CComTest, IsOpenTakesOnlyOneForOpen) {
    const CCom &link = open(USART);
    library.script("Interface_is_Open open=2");
    EXPECT_FALSE(link.IsOpen());
}

TEST_F(CComTest, DestructorLeavesThePortOpen) {
    open(USART);
    const HANDLE handle = com->m_handle;
    com.reset();
    EXPECT_EQ(library.log(), "");
    EXPECT_EQ(Interface_is_Open(handle), 1);
}

TEST_F(CComTest, AssignmentSharesTheHandleAndNotTheBootloaderControl) {
    CComManager manager;
    manager.SetInterfaceType(USBDFU);
    const QList<CCom> listed = manager.getCom(2);
    CCom link;
    link = listed.at(1);
    EXPECT_EQ(link.m_handle, reinterpret_cast<HANDLE>(1));
    EXPECT_EQ(link.GetInterfaceType(), USBDFU);
    EXPECT_EQ(link.Open(), CResult::SUCCESS);
    const CCom copy(link);
    EXPECT_EQ(copy.m_handle, link.m_handle);
    EXPECT_EQ(copy.m_ObBootLoader, nullptr);
    link = copy;
    EXPECT_EQ(link.m_ObBootLoader, nullptr) << "it spoke for the link that was overwritten";
}
