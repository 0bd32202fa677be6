// On its own, because the kernel's termios2 and the C library's termios cannot be included together.

#include "sim/ports/pty/LineRate.h"

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <sys/ioctl.h>

namespace sim {

unsigned lineRate(int fd) {
    struct termios2 settings {};
    return ioctl(fd, TCGETS2, &settings) == 0 ? settings.c_ospeed : 0;
}

} // namespace sim
