#pragma once

#include "libs/zvbl/Command.h"

namespace zvbl {

// Groups of bytes as they travel, check byte included; docs/wire-protocol.md, "Frames".

// The XOR of all bytes; 0 over a group with its own sum.
std::uint8_t sumOf(const Bytes &bytes);

Bytes encodeOpcode(std::uint8_t opcode);

// `reply` is that of the command: a counted group without bytes tells how long it is to be, up to 256.
Bytes encodeGroup(const Group &group, const Reply &reply);

} // namespace zvbl
