#pragma once

#include <cstdint>
#include <memory>

#include "libs/zvbl/Trace.h"
#include "libs/zvbl/framing/Framing.h"
#include "libs/zvbl/transport/Transport.h"

namespace zvbl {

constexpr std::uint8_t linkUsart = 0;
constexpr std::uint8_t linkUsbDfu = 1;
constexpr std::uint8_t linkI2c = 2;
constexpr std::uint8_t linkCan = 3;
constexpr std::uint8_t linkSpi = 4;

// The two halves of an open link. The framing uses the transport, so it goes first.
struct LinkParts {
    std::unique_ptr<Transport> transport;
    std::unique_ptr<Framing> framing;
};

// One kind of link: a row of the table in Links.cpp.
struct LinkKind {
    std::uint8_t type; // as TARGET_SetComIntType takes it
    const char *name;  // as the trace has it
    bool (*accepts)(const LinkSettings &settings);
    LinkParts (*make)(const LinkSettings &settings, const Timing &timing, Trace &trace);
};

// The row of a link type, null if this library has no such link.
const LinkKind *findLinkKind(std::uint8_t type);

} // namespace zvbl
