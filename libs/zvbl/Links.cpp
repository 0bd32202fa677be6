#include "libs/zvbl/Links.h"

#include "libs/zvbl/framing/DfuFraming.h"
#include "libs/zvbl/framing/I2cFraming.h"
#include "libs/zvbl/framing/SpiFraming.h"
#include "libs/zvbl/framing/UsartFraming.h"
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

// The settings are those of a serial line, which a bus does not look at.
bool isAnySetting(const LinkSettings &) {
    return true;
}

constexpr LinkKind kinds[] = {
    {linkUsart, isSerialSetting, make<SerialPort, UsartFraming>},
    {linkUsbDfu, isUsbSetting, make<UsbPort, DfuFraming>},
    {linkI2c, isAnySetting, make<I2cPort, I2cFraming>},
    {linkSpi, isAnySetting, make<SpiPort, SpiFraming>},
};

} // namespace

const LinkKind *findLinkKind(std::uint8_t type) {
    for (const LinkKind &kind : kinds) {
        if (kind.type == type)
            return &kind;
    }
    return nullptr;
}

} // namespace zvbl
