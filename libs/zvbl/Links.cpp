#include "libs/zvbl/Links.h"

#include "libs/zvbl/framing/UsartFraming.h"
#include "libs/zvbl/transport/SerialPort.h"

namespace zvbl {
namespace {

LinkParts makeUsart(const LinkSettings &, const Timing &timing, Trace &trace) {
    auto port = std::make_unique<SerialPort>(trace);
    auto framing = std::make_unique<UsartFraming>(*port, timing, trace);
    return {std::move(port), std::move(framing)};
}

constexpr LinkKind kinds[] = {
    {linkUsart, isSerialSetting, makeUsart},
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
