#include "libs/zvbl/Links.h"

#include <unistd.h>

#include "libs/zvbl/framing/CanFraming.h"
#include "libs/zvbl/framing/DfuFraming.h"
#include "libs/zvbl/framing/I2cFraming.h"
#include "libs/zvbl/framing/SpiFraming.h"
#include "libs/zvbl/framing/UsartFraming.h"
#include "libs/zvbl/transport/CanAdapter.h"
#include "libs/zvbl/transport/CanSocket.h"
#include "libs/zvbl/transport/DeviceNode.h"
#include "libs/zvbl/transport/I2cPort.h"
#include "libs/zvbl/transport/SerialPort.h"
#include "libs/zvbl/transport/SpiPort.h"
#include "libs/zvbl/transport/UsbPort.h"

namespace zvbl {
namespace {

template <class Port, class Framing>
LinkParts make(const LinkSettings &, const Timing &timing, Trace &trace) {
    auto port = std::make_unique<Port>(trace);
    auto framing = std::make_unique<Framing>(*port, timing, trace);
    return {std::move(port), std::move(framing)};
}

// A CAN bus is a network interface, or an adapter on a serial line. An interface goes before a device of
// the same name; a name of neither is one of an interface that is not there.
bool isCanAdapter(const std::string &name) {
    if (name.empty() || isPath(name))
        return !name.empty();
    return !CanSocket::isInterface(name) && access(devicePath(name).c_str(), F_OK) == 0;
}

LinkParts makeCan(const LinkSettings &settings, const Timing &timing, Trace &trace) {
    std::unique_ptr<CanBus> bus;
    if (isCanAdapter(settings.portName))
        bus = std::make_unique<CanAdapter>(trace);
    else
        bus = std::make_unique<CanSocket>(trace);
    auto framing = std::make_unique<CanFraming>(*bus, timing, trace);
    return {std::move(bus), std::move(framing)};
}

bool isCanSetting(const LinkSettings &settings) {
    return settings.baud > 0; // of an adapter; it has its own shape, and an interface looks at none of it
}

// The settings are those of a serial line, which a bus does not look at.
bool isAnySetting(const LinkSettings &) {
    return true;
}

// clang-format off
constexpr LinkKind kinds[] = {
    {linkUsart, "USART", isSerialSetting, make<SerialPort, UsartFraming>},
    {linkUsbDfu, "USB DFU", isUsbSetting, make<UsbPort, DfuFraming>},
    {linkI2c, "I2C", isAnySetting, make<I2cPort, I2cFraming>},
    {linkCan, "CAN", isCanSetting, makeCan},
    {linkSpi, "SPI", isAnySetting, make<SpiPort, SpiFraming>},
};
// clang-format on

} // namespace

const LinkKind *findLinkKind(std::uint8_t type) {
    for (const LinkKind &kind : kinds)
        if (kind.type == type)
            return &kind;
    return nullptr;
}

} // namespace zvbl
