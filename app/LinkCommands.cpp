#include "app/LinkCommands.h"

#include "app/Words.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

int number(const std::string &text) {
    return g_shareParameter.IntParse(text);
}

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

} // namespace

int portNumberOf(const std::string &portName) {
    const std::size_t digit = portName.find_first_of("0123456789");
    return digit == std::string::npos ? 0 : number(portName.substr(digit));
}

const LinkCommand usartCommand = {
    "USART Connect......",
    INTERFACE_USART,
    INTERFACE_USART,
    1000,
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
    setRecordedLine,
    setRecordedBootSwitch,
    [](CBootLoader &) {}};

const LinkCommand i2cCommand = {
    "I2C Connect......",
    INTERFACE_I2C,
    INTERFACE_I2C,
    5000,
    {{"--pn", readPort},
     {"--addr", [](const std::string &value) { g_shareParameter.addr = g_shareParameter.StringToUInt32(value, 16); }},
     {"--rate", [](const std::string &value) { g_shareParameter.rate = static_cast<unsigned int>(number(value)); }},
     {"--dc", [](const std::string &value) { g_shareParameter.dc = static_cast<unsigned int>(number(value)); }}},
    setFixedLine,
    setManual,
    [](CBootLoader &control) {
        control.SetI2CSettings(g_shareParameter.addr, g_shareParameter.rate, static_cast<BYTE>(g_shareParameter.dc));
    }};

const LinkCommand canCommand = {
    "CAN Connect......",
    INTERFACE_CAN,
    INTERFACE_CAN,
    1000,
    {{"--pn", readPort},
     {"--speed",
      [](const std::string &value) { g_shareParameter.uiCANSpeed = static_cast<unsigned int>(number(value)); }}},
    setFixedLine,
    setManual,
    [](CBootLoader &control) { control.SetCANSettings(g_shareParameter.uiCANSpeed); }};

const LinkCommand spiCommand = {
    // MEANT: the shared record holds CAN's number for SPI as well.
    "SPI Connect......",
    INTERFACE_CAN,
    INTERFACE_SPI,
    2000,
    {{"--pn", readPort},
     {"--speed",
      [](const std::string &value) { g_shareParameter.ulSPISpeed = static_cast<unsigned long>(number(value)); }}},
    setFixedLine,
    setManual,
    [](CBootLoader &control) { control.SetSPISettings(g_shareParameter.ulSPISpeed); }};
