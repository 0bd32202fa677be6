#pragma once

#include <memory>

#include "line/channel/Channel.h"
#include "link/CCom.h"

// Opens the link that an order names and brings the bootloader at it into its command state. Throws Failure: no-port,
// permission, port-busy, no-answer; std::exception for what is no link. The link closes with the process.
std::unique_ptr<CCom> connectionTo(const Json &link);
