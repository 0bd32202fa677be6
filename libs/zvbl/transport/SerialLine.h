#pragma once

#include "libs/zvbl/Timing.h"
#include "libs/zvbl/transport/Transport.h"

namespace zvbl {

// The part of a tty that needs the kernel's own termios2, which can't be mixed with the C library's.

// Sets raw mode and the line settings. False with errno set: the driver refuses them.
bool setSerialLine(int fd, const LinkSettings &settings);

void flushSerialLine(int fd);  // throws away what is received and what is not sent yet
void askForLowLatency(int fd); // a wish: not every driver can
Duration serialCharacterTime(const LinkSettings &settings);

} // namespace zvbl
