#pragma once

#include <string>

#include "look/Report.h"

class CBootLoader;

// Who a connected chip is and what it allows. Its description has to be there.
void tellChip(CBootLoader &control, Section &report);

// The CRC-32 of IEEE 802.3 that the chip computes of whole sectors. The range is "all" or the first and the last
// address, "08000000-08001FFF". Throws Refusal for a range that is none, and where the chip gives no CRC.
void tellCrc(CBootLoader &control, const std::string &range, Section &report);
