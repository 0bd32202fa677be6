#include "app/Connect.h"

#include <exception>
#include <memory>
#include <vector>

#include <QList>

#include "app/Link.h"
#include "app/LinkCommands.h"
#include "app/LinkSettings.h"
#include "app/Report.h"
#include "app/SubOptions.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

const char *const noPortText = "Don't choose com port number";
const char *const cannotOpenText = "Cannot open the com port, the port not exist or may be used by another application";
const char *const unrecognizedText = "Unrecognized device...Please, reset your device then try again";

// Keeps the link to the end of the process, as a second command on a line takes over the variable but neither
// closes nor frees the link that stood there.
CCom *keep(std::unique_ptr<CCom> link) {
    static std::vector<std::unique_ptr<CCom>> links;
    links.push_back(std::move(link));
    return links.back().get();
}

bool fail(const char *text) {
    WriteInforAndWaitInput(text);
    return false;
}

bool failAndClose(const std::string &text, CCom *obCCom) {
    WriteInforAndWaitInput(text);
    closeLink(obCCom);
    return false;
}

// False, with the word reported, at one that cannot be used.
bool readSettings(SubOptionWalk &walk, OptionId connection, CCom *earlierLink) {
    try {
        if (readLinkSettings(walk, connection))
            return true;
        closeLink(earlierLink);
    } catch (const std::exception &) {
        // The earlier link stays open.
    }
    WriteBadParameterInfor(walk.argv, walk.argIndex);
    return false;
}

void printDeviceLines(CBootLoader &control, const CDevice &device) {
    std::string version;
    std::string bid;
    control.GetVersion(version, bid);
    if (bid == "NA")
        control.GetBID(bid);
    printLine("Device:  " + device.m_StrName + "    Flash:  " + std::to_string(device.m_IFlashSize) + " KB");
    printLine("PID:  " + device.m_StrPID + "      BID:  " + bid + "    Version:  " + version);
    printLine("Device connected Successfully");
    printLine("");
}

bool openLink(const LinkCommand &command, CCom *&obCCom) {
    CComManager comManager;
    comManager.SetInterfaceType(command.type);
    if (g_shareParameter.c_portNumber == -1)
        return fail(noPortText);
    obCCom = keep(makeLink(command));
    if (obCCom->Open() != 0)
        return fail(cannotOpenText);
    return true;
}

bool identify(const LinkCommand &command, CCom *obCCom) {
    if (startBootloader(command, *obCCom) != 0)
        return failAndClose(std::string(unrecognizedText) + " ", obCCom);
    CBootLoader *control = obCCom->m_ObBootLoader;
    const CDevice *device = InitDevice(control);
    if (device == nullptr)
        return failAndClose("Init Device Failed!", obCCom);
    printDeviceLines(*control, *device);
    return true;
}

bool connectLine(const LinkCommand &command, int argc, char **argv, int &arg_index, CCom *&obCCom) {
    printLine(command.firstLine);
    g_shareParameter.m_InterfaceType = command.recordType;
    SubOptionWalk walk(argc, argv, arg_index, SubOptionWalk::leavesLastWord);
    return readSettings(walk, command.option, obCCom) && openLink(command, obCCom) && identify(command, obCCom);
}

// The first device found is the one used.
bool openFirstDfuDevice(CCom *&obCCom) {
    CComManager comManager;
    comManager.SetInterfaceType(INTERFACE_USBDFU);
    const int count = CComManager::CountDfuDevices();
    if (count < 1)
        return fail("Unable to get DFU device");
    obCCom = keep(std::make_unique<CCom>());
    *obCCom = comManager.getCom(count).first();
    obCCom->Close();
    if (obCCom->Open() != 0)
        return fail("Open DFU device error!");
    return true;
}

} // namespace

CDevice *InitDevice(CBootLoader *obBootLoader) {
    if (obBootLoader == nullptr)
        return nullptr;
    obBootLoader->InitDevice();
    return obBootLoader->m_ObDevice;
}

bool DFUConnect(int argc, char **, int &arg_index, CCom *&obCCom) {
    printLine("DFU Connect......");
    if (arg_index < argc)
        ++arg_index;
    g_shareParameter.m_InterfaceType = INTERFACE_USBDFU;
    if (!openFirstDfuDevice(obCCom))
        return false;
    CBootLoader *control = obCCom->m_ObBootLoader;
    if (control->Connect() != 0)
        return fail(unrecognizedText);
    const CDevice *device = InitDevice(control);
    if (device == nullptr)
        return fail("Init Device Failed!");
    printDeviceLines(*control, *device);
    return true;
}

bool USARTConnect(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    return connectLine(usartCommand, argc, argv, arg_index, obCCom);
}

bool I2CConnect(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    return connectLine(i2cCommand, argc, argv, arg_index, obCCom);
}

bool CANConnect(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    return connectLine(canCommand, argc, argv, arg_index, obCCom);
}

bool SPIConnect(int argc, char **argv, int &arg_index, CCom *&obCCom) {
    return connectLine(spiCommand, argc, argv, arg_index, obCCom);
}
