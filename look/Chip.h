#pragma once

#include <string>

#include "device/Device.h"

// The description of a chip by the name of its map file without the suffix, such as "ZV32F403A_1024K". It lasts to the
// end of the process. Throws Refusal for a name that no map file has.
CDevice &chipNamed(const std::string &name);
