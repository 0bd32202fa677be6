#include "line/unit/Connection.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <QList>

#include <unistd.h>

#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "line/unit/Failure.h"
#include "link/BootLoader.h"

namespace {

constexpr int replyMilliseconds = 5000;
constexpr int dataBits = 8;
constexpr int usualBaud = 115200;

struct Kind {
    const char *name;
    signed char type;
    int connectMilliseconds;
    void (*set)(CCom &link, const Json &words); // of an open one, before the connect
};

void setUsart(CCom &link, const Json &words) {
    link.SetBootSwitch(words.contains("auto") ? AUTOMATIC : MANUAL);
    link.SetBootOptionIndex(words.value("auto", 0));
}

void setI2c(CCom &link, const Json &words) {
    link.m_ObBootLoader->SetI2CSettings(words.value("address", 0U), 0, 0);
}

void setCan(CCom &link, const Json &words) {
    link.m_ObBootLoader->SetCANSettings(words.value("rate", 0U));
}

void setSpi(CCom &link, const Json &words) {
    link.m_ObBootLoader->SetSPISettings(words.value("rate", 0UL));
}

constexpr Kind kinds[] = {{"usart", INTERFACE_USART, 1000, setUsart},
                          {"dfu", INTERFACE_USBDFU, 1000, [](CCom &, const Json &) {}},
                          {"i2c", INTERFACE_I2C, 5000, setI2c},
                          {"can", INTERFACE_CAN, 1000, setCan},
                          {"spi", INTERFACE_SPI, 2000, setSpi}};

const Kind &kindOf(const Json &link) {
    const std::string name = link.at("kind");
    for (const Kind &kind : kinds)
        if (name == kind.name)
            return kind;
    throw std::runtime_error("no link is called " + name);
}

// The node of a device on USB, by its place: "1-2.3".
std::string usbNode(const std::string &place) {
    const std::string directory = "/sys/bus/usb/devices/" + place + '/';
    int bus = 0;
    int device = 0;
    std::ifstream(directory + "busnum") >> bus;
    std::ifstream(directory + "devnum") >> device;
    char node[40];
    std::snprintf(node, sizeof node, "/dev/bus/usb/%03d/%03d", bus, device);
    return node;
}

// Why a port did not open.
[[noreturn]] void refusePort(const Kind &kind, const std::string &port, int result) {
    if (kind.type == INTERFACE_CAN && port.front() != '/') {
        const bool isThere = access(("/sys/class/net/" + port).c_str(), F_OK) == 0;
        throw Failure(isThere ? "port-busy" : "no-port",
                      port + (isThere ? " can't be used as it is set up" : " is not there"));
    }
    const std::string node = kind.type == INTERFACE_USBDFU ? usbNode(port) : port;
    if (access(node.c_str(), F_OK) != 0)
        throw Failure("no-port", node + " is not there");
    if (access(node.c_str(), R_OK | W_OK) != 0)
        throw Failure("permission", node + " may not be opened");
    throw Failure("port-busy", result);
}

int parityOf(const Json &words) {
    const std::string parity = words.value("parity", "even");
    return parity == "none" ? 0 : parity == "odd" ? 1 : 2;
}

// One that is alone in the list: whatever else is plugged in stays out of it.
std::unique_ptr<CCom> dfuLink(const std::string &place) {
    setenv("ZVBL_DFU", place.c_str(), 1);
    CComManager manager;
    manager.SetInterfaceType(INTERFACE_USBDFU);
    if (CComManager::CountDfuDevices() < 1)
        throw Failure("no-port", "no chip is at " + place);
    return std::make_unique<CCom>(manager.getCom(1).first());
}

std::unique_ptr<CCom> closedLink(const Kind &kind, const Json &words) {
    const std::string port = words.at("port");
    g_shareParameter.m_InterfaceType = kind.type;
    if (kind.type == INTERFACE_USBDFU)
        return dfuLink(port);
    CComManager().SetInterfaceType(kind.type);
    auto link = std::make_unique<CCom>(1, kind.type, port.c_str());
    if (kind.type == INTERFACE_USART)
        link->SetSettings(words.value("rate", usualBaud), dataBits, parityOf(words));
    return link;
}

} // namespace

std::unique_ptr<CCom> connectionTo(const Json &words) {
    const Kind &kind = kindOf(words);
    auto link = closedLink(kind, words);
    if (const int result = link->Open(); result != CResult::SUCCESS)
        refusePort(kind, words.at("port"), result);
    link->SetComTimeOut(kind.connectMilliseconds);
    kind.set(*link, words);
    require(link->m_ObBootLoader->Connect(), "no-answer");
    link->SetComTimeOut(replyMilliseconds);
    return link;
}
