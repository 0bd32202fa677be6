#pragma once

namespace faults {

// The power of the chip in this process will go in the middle of what it erases or programs next.
void cutPower();

} // namespace faults
