#include "look/doctor/Examine.h"

#include <cstdlib>

#include "app/LinkSettings.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "look/Unit.h"
#include "look/doctor/BusChecks.h"
#include "look/doctor/CanChecks.h"
#include "look/doctor/UsbChecks.h"

namespace {

constexpr int secondsForAnswer = 1;

int parityNumber(char parity) {
    return parity == 'n' ? 0 : parity == 'o' ? 1 : 2;
}

// Empty where the bootloader gave none.
std::string identityOf(OptionId connection, const std::string &port, const LineSetting &line) {
    g_shareParameter.str_portName = port;
    g_shareParameter.c_portNumber = portNumberOf(port);
    g_shareParameter.c_BaudRate = static_cast<int>(line.baud);
    g_shareParameter.c_DataBits = 8;
    g_shareParameter.c_parity = parityNumber(line.parity);
    g_shareParameter.c_timeout = secondsForAnswer;
    const Unit unit(connection);
    std::string pid;
    std::string version;
    std::string block;
    BYTE series = 0;
    if (!unit.isThere() || unit.control().GetPID(pid, series) != 0 || unit.control().GetVersion(version, block) != 0)
        return {};
    return "PID " + pid + ", bootloader " + version;
}

// True where a bootloader gave its identity.
bool identify(OptionId connection, const std::string &port, const LineSetting &line, Diagnosis &diagnosis) {
    const std::string identity = identityOf(connection, port, line);
    if (!identity.empty())
        diagnosis.good("chip", identity);
    return !identity.empty();
}

// What all nodes have. True where the port may be spoken to.
bool examineNode(const Node &node, const Examination &how, Diagnosis &diagnosis) {
    if (!checkPlace(node, diagnosis))
        return false;
    const bool mayOpen = checkPermission(node, how.person, diagnosis);
    const bool isFree = checkHolders(node, how.machine, mayOpen && how.speaks, diagnosis);
    return mayOpen && isFree && how.speaks;
}

void examineSerial(const Port &port, const Examination &how, Diagnosis &diagnosis) {
    const Node node{port.name, port.path, "tty"};
    const bool speaks = examineNode(node, how, diagnosis);
    checkSerialSystem(node, how.machine, diagnosis);
    if (speaks && judgeHeard(listenTo(port.path, how.line), diagnosis) &&
        !identify(OptionId::usart, port.path, how.line, diagnosis))
        diagnosis.found(Cause::unsteady, "it answered 7F, and no command");
}

void examineI2c(const Port &port, const Examination &how, Diagnosis &diagnosis) {
    checkI2cModule(port.name, how.machine, diagnosis);
    if (diagnosis.has(Cause::moduleMissing) || !examineNode({port.name, port.path, "i2c-dev"}, how, diagnosis))
        return;
    const std::string number = port.name.substr(port.name.find('-') + 1);
    if (checkI2c(number, i2cBusAt(port.path), how.machine, diagnosis) &&
        !identify(OptionId::i2c, port.path, how.line, diagnosis))
        diagnosis.found(Cause::silence, "3c answers, and no command is answered");
}

void examineSpi(const Port &port, const Examination &how, Diagnosis &diagnosis) {
    checkSpiDriver(port.name, how.machine, diagnosis);
    if (!diagnosis.has(Cause::spiUnbound) && examineNode({port.name, port.path, "spidev"}, how, diagnosis) &&
        !identify(OptionId::spi, port.path, how.line, diagnosis))
        diagnosis.found(Cause::silence, "no command is answered");
}

void examineCan(const Port &port, const Examination &how, Diagnosis &diagnosis) {
    if (!judgeInterface(port.name, canInterface(port.name), diagnosis) || !how.speaks)
        return;
    const CanErrors errors(port.name);
    if (!identify(OptionId::can, port.name, how.line, diagnosis))
        judgeSilence(port.name, errors.heard(), diagnosis);
}

void examineUsb(const Port &port, const Examination &how, Diagnosis &diagnosis) {
    if (!checkUsb(port.name, how.machine, how.person, diagnosis) || !how.speaks)
        return;
    setenv("ZVBL_DFU", port.name.c_str(), 1); // this device of several
    if (!identify(OptionId::dfu, port.name, how.line, diagnosis))
        diagnosis.found(Cause::silence, "no command is answered");
}

} // namespace

Diagnosis examine(const Port &port, const Examination &how) {
    Diagnosis diagnosis;
    switch (port.kind) {
    case PortKind::serial: examineSerial(port, how, diagnosis); break;
    case PortKind::i2c: examineI2c(port, how, diagnosis); break;
    case PortKind::spi: examineSpi(port, how, diagnosis); break;
    case PortKind::can: examineCan(port, how, diagnosis); break;
    case PortKind::usb: examineUsb(port, how, diagnosis); break;
    }
    // A port that is missing may be one of an adapter that no driver has.
    if (diagnosis.has(Cause::noPort))
        checkAdapters(how.machine, diagnosis);
    return diagnosis;
}
