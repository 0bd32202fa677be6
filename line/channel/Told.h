#pragma once

#include "line/channel/Channel.h"

// Throws std::runtime_error for what is no message of the process that makes a unit: line/channel/Messages.h. What it
// says goes into records, so nothing else gets through.
void checkTold(const Json &message);
