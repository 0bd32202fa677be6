#pragma once

#include <string>

#include <QList>

#include "foundation/LibraryTypes.h"
#include "link/BootOption.h"

class CBootLoader;

// Interface types.
constexpr signed char INTERFACE_USART = 0;
constexpr signed char INTERFACE_USBDFU = 1;
constexpr signed char INTERFACE_I2C = 2;
constexpr signed char INTERFACE_CAN = 3;
constexpr signed char INTERFACE_SPI = 4;

// One link to a target: its port, its line settings and the handle of the bootloader library.
// Every int result is a CResult code.
// A link is used by one thread at a time.
class CCom {
public:
    HANDLE m_handle = nullptr;             // USB DFU: the zero-based device index as a plain number
    CBootLoader *m_ObBootLoader = nullptr; // owned; exists from a successful Open to Close
    int m_iPortNum = 0;                    // zero-based on USB DFU, as passed on all other links
    std::string m_strPortName;
    int m_iSpeedInBaud = 115200;
    int m_iBit = 8;
    int m_iParity = 2; // 0 none, 1 odd, 2 even
    float m_fStopBit = 1.0F;
    int m_iTimeOut = 5; // milliseconds once SetComTimeOut has succeeded
    QList<int> m_lsSupSpeedInBaud;
    QList<int> m_lsSupiBit;
    QList<int> m_lsSupParity;
    QList<int> m_lsSupiTimeOut;
    bool m_isDownLoaded = false;
    bool m_isIniting = false;
    BootSwitch m_emBootSwitch = MANUAL;
    int m_AutoSwitchIndex = 0; // row of the auto-connect table, 0 to 12
    signed char m_InterfaceType = INTERFACE_USART;

    // A closed link with the default settings.
    CCom();
    // A closed link. On USB DFU the port number is one-based and no library call is made; on the others
    // the library makes the link, and a failure of that shows at Open. The name may be null.
    CCom(int iPortNum, char typev, const char *strPortName);
    // A copy shares the handle and never the bootloader control, which belongs to one link alone.
    CCom(const CCom &other);
    CCom &operator=(const CCom &other);
    // Destroys the bootloader control, as Close does, and leaves the port as it is.
    ~CCom();

    // Sets the defaults, forgets handle and bootloader control, and builds the support lists.
    void InitSetting();
    void InitSupportSpeedInBaud();
    void InitSupportBit();
    void InitSupportParity();
    void InitSupportTimeOut();

    // Hands the line settings to the library and keeps them when it took them. Baud, bits, and parity as
    // in m_iParity. USB DFU has none: 0 without a call.
    int SetSettings(int speedInBaud, int nbBit, int parity);
    // MEANT: the arguments come by value, so nothing is handed back.
    void GetSetting(int speedInBaud, int nbBit, int parity);
    void GetTimeOut(int iTimeOut);

    // USART only; no effect on other links.
    void SetBootSwitch(BootSwitch emBootSwitch);
    BootSwitch GetBootSwitch() const;
    // The range is tested where the index is used.
    void SetBootOptionIndex(int index);
    // Takes the target into its bootloader by the row of the auto-connect table. False, with no line moved,
    // unless the switch is AUTOMATIC and the index is one of the table; true on links other than USART.
    bool SetBootOption();
    // Drives the reset line and the boot line and waits 600 ms in all. False with nothing done for a boot
    // line without a reset line.
    bool SetBootOption(BootOptionLine Reset, BootOptionLine BL, BootOptionState ResetState, BootOptionState BLState);

    // Reply time limit of every later exchange, in milliseconds. USB DFU has none: 0 without a call.
    int SetComTimeOut(int iTimeOut);

    // Opens the port and makes the bootloader control.
    int Open();
    // Destroys the bootloader control and closes the port. From the listener of a job the port closes at once
    // and the job, which fails at its next call of the library, is destroyed with the control at its end; the
    // link may be opened again after that.
    int Close();
    bool IsOpen() const;
    signed char GetInterfaceType() const;

private:
    bool hasLineSettings() const;
    void driveLine(BootOptionLine line, BootOptionState state);
    void dropBootLoader();
    void copySettings(const CCom &other);
};

// Makes links of one interface type.
class CComManager {
public:
    int m_nDefPortNums = 1024;
    signed char m_InterfaceType = INTERFACE_USART;

    CComManager() = default;
    ~CComManager() = default;

    // Stores the type and tells the library, for the whole process, which link all later calls speak.
    void SetInterfaceType(char typev);
    // One closed link per port number from 1 to nPortNum, or to m_nDefPortNums for -1; another number
    // replaces m_nDefPortNums. USART ports are not enumerated: an empty list.
    QList<CCom> getCom(int nPortNum);
    // Whether a USART port is open or opens; true on every other link.
    bool IsCanbeOpen(int iPortNum);
    // How many USB DFU devices there are; 0 when they cannot be listed.
    static int CountDfuDevices();
    // Whether a USB DFU device can be reached; true without any library call on a run over another link,
    // which the shared parameter record tells.
    static bool InitZVDFUDeviceList();
};
