#include "app/LinkSettings.h"

#include "foundation/ShareParameter.h"

namespace {

int number(const std::string &text) {
    return g_shareParameter.IntParse(text);
}

void read(SubId setting, const std::string &value) {
    ShareParameter &record = g_shareParameter;
    switch (setting) {
    case SubId::port:
        record.str_portName = value;
        record.c_portNumber = portNumberOf(value);
        break;
    case SubId::baudRate: record.c_BaudRate = number(value); break;
    case SubId::dataBits: record.c_DataBits = number(value); break;
    case SubId::parity: record.c_parity = ParityToInt(value); break;
    case SubId::timeLimit: record.c_timeout = number(value); break;
    case SubId::bootSwitch:
        record.c_autoConnectFlag = true;
        record.c_autoConnectOption = number(value);
        break;
    case SubId::busAddress: record.addr = record.StringToUInt32(value, 16); break;
    case SubId::busRate: record.rate = static_cast<unsigned int>(number(value)); break;
    case SubId::dutyCycle: record.dc = static_cast<unsigned int>(number(value)); break;
    default: break;
    }
}

void readSpeed(OptionId connection, const std::string &value) {
    if (connection == OptionId::can)
        g_shareParameter.uiCANSpeed = static_cast<unsigned int>(number(value));
    else
        g_shareParameter.ulSPISpeed = static_cast<unsigned long>(number(value));
}

} // namespace

// MEANT: the I2C, CAN, SPI and SPIM values stay 0, although the usage text promises defaults for some.
void loadStartValues() {
    g_shareParameter.c_portNumber = 1;
    g_shareParameter.c_BaudRate = 115200;
    g_shareParameter.c_DataBits = 8;
    g_shareParameter.c_parity = g_shareParameter.ParityToInt("EVEN");
    g_shareParameter.c_timeout = 5;
    g_shareParameter.c_address = ZVCHIP_FLASH_BASE_ADDRESS;
}

bool readLinkSettings(SubOptionWalk &walk, OptionId connection) {
    while (walk.next()) {
        const SubWord *sub = subWord(connection, walk.word());
        if (sub == nullptr)
            continue;
        if (sub->id == SubId::speed)
            readSpeed(connection, walk.value());
        else
            read(sub->id, walk.value());
    }
    return !walk.atBadWord();
}

int portNumberOf(const std::string &portName) {
    const std::size_t digit = portName.find_first_of("0123456789");
    return digit == std::string::npos ? 0 : number(portName.substr(digit));
}
