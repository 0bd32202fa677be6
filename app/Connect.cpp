#include "app/Connect.h"

#include <QList>

#include <exception>
#include <vector>

#include "app/Report.h"
#include "app/SubOptions.h"
#include "app/Walk.h"
#include "app/Words.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

const char *const noPortText = "Don't choose com port number";
const char *const cannotOpenText =
    "Cannot open the com port, the port not exist or may be used by another application";
const char *const unrecognizedText = "Unrecognized device...Please, reset your device then try again";

int number(const std::string &text) {
    return g_shareParameter.IntParse(text);
}

// One sub-option of a connection command: its word in lower case, and where its value goes.
struct Setting {
    const char *word;
    void (*read)(const std::string &value);
};

// What makes a link command different from the others.
struct LinkCommand {
    const char *firstLine;
    char recordType; // the interface type of the shared record
    char type;       // the interface type of the link
    int connectTime; // reply time limit of the connect, ms
    std::vector<Setting> settings;
    void (*setLine)(CCom &);             // before the port opens
    void (*setBootSwitch)(CCom &);
    void (*setBootLoader)(CBootLoader &); // before the connect
};

void readPort(const std::string &value) {
    g_shareParameter.str_portName = value;
    g_shareParameter.c_portNumber = portNumberOf(value);
}

void setRecordedLine(CCom &link) {
    link.SetSettings(g_shareParameter.c_BaudRate, g_shareParameter.c_DataBits, g_shareParameter.c_parity);
}

void setFixedLine(CCom &link) {
    link.SetSettings(115200, 8, 2);
}

void setManual(CCom &link) {
    link.SetBootSwitch(MANUAL);
}

void setRecordedBootSwitch(CCom &link) {
    if (!g_shareParameter.c_autoConnectFlag) {
        setManual(link);
        return;
    }
    link.SetBootSwitch(AUTOMATIC);
    link.SetBootOptionIndex(g_shareParameter.c_autoConnectOption);
}

const LinkCommand usart = {
    "USART Connect......", 0, 0, 1000,
    {{"--pn", readPort},
     {"--br", [](const std::string &value) { g_shareParameter.c_BaudRate = number(value); }},
     {"--db", [](const std::string &value) { g_shareParameter.c_DataBits = number(value); }},
     {"--pr", [](const std::string &value) { g_shareParameter.c_parity = ParityToInt(value); }},
     {"--to", [](const std::string &value) { g_shareParameter.c_timeout = number(value); }},
     {"--auto",
      [](const std::string &value) {
          g_shareParameter.c_autoConnectFlag = true;
          g_shareParameter.c_autoConnectOption = number(value);
      }}},
    setRecordedLine, setRecordedBootSwitch, [](CBootLoader &) {}};

const LinkCommand i2c = {
    "I2C Connect......", 2, 2, 5000,
    {{"--pn", readPort},
     {"--addr", [](const std::string &value) { g_shareParameter.addr = g_shareParameter.StringToUInt32(value, 16); }},
     {"--rate", [](const std::string &value) { g_shareParameter.rate = static_cast<unsigned int>(number(value)); }},
     {"--dc", [](const std::string &value) { g_shareParameter.dc = static_cast<unsigned int>(number(value)); }}},
    setFixedLine, setManual,
    [](CBootLoader &control) {
        control.SetI2CSettings(g_shareParameter.addr, g_shareParameter.rate, static_cast<BYTE>(g_shareParameter.dc));
    }};

const LinkCommand can = {
    "CAN Connect......", 3, 3, 1000,
    {{"--pn", readPort},
     {"--speed",
      [](const std::string &value) { g_shareParameter.uiCANSpeed = static_cast<unsigned int>(number(value)); }}},
    setFixedLine, setManual,
    [](CBootLoader &control) { control.SetCANSettings(g_shareParameter.uiCANSpeed); }};

const LinkCommand spi = {
    // MEANT: the shared record holds 3 for SPI as for CAN.
    "SPI Connect......", 3, 4, 2000,
    {{"--pn", readPort},
     {"--speed",
      [](const std::string &value) { g_shareParameter.ulSPISpeed = static_cast<unsigned long>(number(value)); }}},
    setFixedLine, setManual,
    [](CBootLoader &control) { control.SetSPISettings(g_shareParameter.ulSPISpeed); }};

bool fail(const char *text) {
    WriteInforAndWaitInput(text);
    return false;
}

bool failAndClose(const std::string &text, CCom *obCCom) {
    WriteInforAndWaitInput(text);
    closeLink(obCCom);
    return false;
}

// Reads the sub-options as the walk reaches them. False, with the word reported, at one that cannot be used.
bool readSettings(SubOptionWalk &walk, const std::vector<Setting> &settings, CCom *earlierLink) {
    while (walk.next()) {
        const std::string word = ShareParameter::ToLower(walk.word());
        for (const Setting &setting : settings) {
            if (word == setting.word) {
                setting.read(walk.value());
            }
        }
    }
    if (!walk.atBadWord()) {
        return true;
    }
    closeLink(earlierLink);
    walk.reportBadParameter();
    return false;
}

bool tryReadSettings(SubOptionWalk &walk, const std::vector<Setting> &settings, CCom *earlierLink) {
    try {
        return readSettings(walk, settings, earlierLink);
    } catch (const std::exception &) {
        walk.reportBadParameter();
        return false;
    }
}

void printDeviceLines(CBootLoader &control, const CDevice &device) {
    std::string version;
    std::string bid;
    control.GetVersion(version, bid);
    if (bid == "NA") {
        control.GetBID(bid);
    }
    printLine("Device:  " + device.m_StrName + "    Flash:  " + std::to_string(device.m_IFlashSize) + " KB");
    printLine("PID:  " + device.m_StrPID + "      BID:  " + bid + "    Version:  " + version);
    printLine("Device connected Successfully");
    printLine("");
}

bool openLink(const LinkCommand &command, CCom *&obCCom) {
    CComManager comManager;
    comManager.SetInterfaceType(command.type);
    if (g_shareParameter.c_portNumber == -1) {
        return fail(noPortText);
    }
    obCCom = new CCom(g_shareParameter.c_portNumber, command.type, g_shareParameter.str_portName.c_str());
    command.setLine(*obCCom);
    return obCCom->Open() == 0 || fail(cannotOpenText);
}

bool identify(const LinkCommand &command, CCom *obCCom) {
    CBootLoader *control = obCCom->m_ObBootLoader;
    obCCom->SetComTimeOut(command.connectTime);
    command.setBootSwitch(*obCCom);
    command.setBootLoader(*control);
    if (control->Connect() != 0) {
        return failAndClose(std::string(unrecognizedText) + " ", obCCom);
    }
    obCCom->SetComTimeOut(g_shareParameter.c_timeout * 1000);
    const CDevice *device = InitDevice(control);
    if (device == nullptr) {
        return failAndClose("Init Device Failed!", obCCom);
    }
    printDeviceLines(*control, *device);
    return true;
}

bool connectLine(const LinkCommand &command, int argc, char **argv, int &arg_index, CCom *&obCCom) {
    printLine(command.firstLine);
    g_shareParameter.m_InterfaceType = command.recordType;
    SubOptionWalk walk(argc, argv, arg_index, SubOptionWalk::LeavesLastWord);
    return tryReadSettings(walk, command.settings, obCCom) && openLink(command, obCCom) &&
           identify(command, obCCom);
}

// The first device found is the one used.
bool openFirstDfuDevice(CCom *&obCCom) {
    CComManager comManager;
    comManager.SetInterfaceType(1);
    signed char num = 99;
    std::vector<unsigned short> vidlist(255);
    std::vector<unsigned short> pidlist(255);
    TDeviceInfo di = {};
    if (ZVBL_GetZVDeviceList(&num, vidlist.data(), pidlist.data(), &di) != 0 || num < 1) {
        return fail("Unable to get DFU device");
    }
    const QList<CCom> devices = comManager.getCom(num);
    if (devices.isEmpty()) {
        return fail("Don't have DFU device!");
    }
    obCCom = new CCom();
    *obCCom = devices.first();
    obCCom->Close();
    return obCCom->Open() == 0 || fail("Open DFU device error!");
}

} // namespace

int portNumberOf(const std::string &portName) {
    const std::size_t digit = portName.find_first_of("0123456789");
    return digit == std::string::npos ? 0 : number(portName.substr(digit));
}

CDevice *InitDevice(CBootLoader *obBootLoader) {
    if (obBootLoader == nullptr) {
        return nullptr;
    }
    obBootLoader->InitDevice();
    return obBootLoader->m_ObDevice;
}

bool DFUConnect(int argc, char **, int &arg_index, CCom *&obCCom) {
    printLine("DFU Connect......");
    if (arg_index < argc) {
        ++arg_index;
    }
    g_shareParameter.m_InterfaceType = 1;
    if (!openFirstDfuDevice(obCCom)) {
        return false;
    }
    CBootLoader *control = obCCom->m_ObBootLoader;
    if (control->Connect() != 0) {
        return fail(unrecognizedText);
    }
    const CDevice *device = InitDevice(control);
    if (device == nullptr) {
        return fail("Init Device Failed!");
    }
    printDeviceLines(*control, *device);
    return true;
}

bool USARTConnect(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    return connectLine(usart, argc, argv, arg_index, obCCom);
}

bool I2CConnect(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    return connectLine(i2c, argc, argv, arg_index, obCCom);
}

bool CANConnect(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    return connectLine(can, argc, argv, arg_index, obCCom);
}

bool SPIConnect(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    return connectLine(spi, argc, argv, arg_index, obCCom);
}
