#pragma once

#include "foundation/LibraryTypes.h"

// Closes the link of a target that is being reset and opens it again: up to 5 attempts, each after 2000 ms.
// Gives the CResult code of the last attempt when all have failed, and 0 when one succeeded. MEANT: a USB DFU
// device that is not in the device list ends the trying as well, and Connect then finds out.
int reopenAfterReset(HANDLE handle);

// The wait between the opened port and Connect.
void waitForBootloader();
