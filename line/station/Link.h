#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "line/channel/Channel.h"
#include "line/job/Table.h"

enum class LinkKind { usart, dfu, i2c, can, spi };

// How all nests of a station are spoken to. What is not said is left to the console's own defaults.
struct Link {
    LinkKind kind = LinkKind::usart;
    std::optional<std::uint32_t> rate;    // baud of a usart, bits per second of a bus, Hz of spi
    std::optional<std::string> parity;    // of a usart: "none", "odd", "even"
    std::optional<std::uint32_t> autoRow; // of a usart: how DTR and RTS are wired, 0 to 12
    std::optional<std::uint32_t> address; // of a chip on i2c, 7 bits
};

const char *nameOf(LinkKind kind);

// Reads [link]. Throws Refusal for a key that links of this kind don't have.
Link readLink(Table table);

// A port in the form that links of this kind have: the absolute path of a node, the place of a device on USB as
// "1-2.3", the name of a network interface. Throws Refusal for any other.
std::string readPort(Table &table, const std::string &key, LinkKind kind);

// As the process that makes a unit is told of it.
Json linkJson(const Link &link, const std::string &port);
