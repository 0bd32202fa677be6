#include "app/LinkCommands.h"

#include "foundation/Result.h"
#include "foundation/ShareParameter.h"
#include "link/BootLoader.h"
#include "link/CCom.h"

namespace {

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

const LinkCommand usartCommand = {OptionId::usart, "USART Connect......", INTERFACE_USART,     INTERFACE_USART, 1000,
                                  setRecordedLine, setRecordedBootSwitch, [](CBootLoader &) {}};

const LinkCommand i2cCommand = {OptionId::i2c,
                                "I2C Connect......",
                                INTERFACE_I2C,
                                INTERFACE_I2C,
                                5000,
                                setFixedLine,
                                setManual,
                                [](CBootLoader &control) {
                                    control.SetI2CSettings(g_shareParameter.addr, g_shareParameter.rate,
                                                           static_cast<BYTE>(g_shareParameter.dc));
                                }};

const LinkCommand canCommand = {
    OptionId::can, "CAN Connect......",
    INTERFACE_CAN, INTERFACE_CAN,
    1000,          setFixedLine,
    setManual,     [](CBootLoader &control) { control.SetCANSettings(g_shareParameter.uiCANSpeed); }};

const LinkCommand spiCommand = {OptionId::spi,
                                // MEANT: the shared record holds CAN's number for SPI as well.
                                "SPI Connect......", INTERFACE_CAN, INTERFACE_SPI, 2000, setFixedLine, setManual,
                                [](CBootLoader &control) { control.SetSPISettings(g_shareParameter.ulSPISpeed); }};

std::unique_ptr<CCom> makeLink(const LinkCommand &command) {
    auto link =
        std::make_unique<CCom>(g_shareParameter.c_portNumber, command.type, g_shareParameter.str_portName.c_str());
    command.setLine(*link);
    return link;
}

int startBootloader(const LinkCommand &command, CCom &link) {
    link.SetComTimeOut(command.connectTime);
    command.setBootSwitch(link);
    command.setBootLoader(*link.m_ObBootLoader);
    if (const int result = link.m_ObBootLoader->Connect(); result != CResult::SUCCESS)
        return result;
    // Unsigned, as a number of seconds that is too large has to wrap without a signed overflow.
    link.SetComTimeOut(static_cast<int>(static_cast<unsigned int>(g_shareParameter.c_timeout) * 1000));
    return CResult::SUCCESS;
}
