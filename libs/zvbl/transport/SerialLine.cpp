#include "libs/zvbl/transport/SerialLine.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

#include <asm/termbits.h>
#include <linux/serial.h>
#include <linux/tty_flags.h>
#include <sys/ioctl.h>

namespace zvbl {
namespace {

constexpr int parityNone = 0;
constexpr int parityOdd = 1;

tcflag_t controlFlags(const LinkSettings &settings) {
    static constexpr tcflag_t sizes[] = {CS5, CS6, CS7, CS8};
    // No HUPCL: the control lines keep their levels when the port is closed, so that a program that was
    // started over them is not reset by it.
    tcflag_t flags = CREAD | CLOCAL | BOTHER | (BOTHER << IBSHIFT) | sizes[settings.dataBits - 5];
    if (settings.parity != parityNone)
        flags |= PARENB;
    if (settings.parity == parityOdd)
        flags |= PARODD;
    if (settings.stopBits > 1.0F)
        flags |= CSTOPB; // the hardware makes 1.5 of it with 5 data bits, else 2, which every receiver takes
    return flags;
}

} // namespace

bool setSerialLine(int fd, const LinkSettings &settings) {
    termios2 line{};
    if (ioctl(fd, TCGETS2, &line) != 0)
        return false;
    // A character with wrong parity is dropped: a missing answer is asked for again, a wrong one is believed.
    line.c_iflag = IGNBRK | (settings.parity == parityNone ? 0 : INPCK | IGNPAR);
    line.c_oflag = 0;
    line.c_lflag = 0;
    line.c_cflag = controlFlags(settings);
    line.c_ispeed = line.c_ospeed = static_cast<speed_t>(settings.baud);
    line.c_cc[VMIN] = 1; // so that a read of 0 bytes means that the device is gone
    line.c_cc[VTIME] = 0;
    if (ioctl(fd, TCSETS2, &line) != 0 || ioctl(fd, TCGETS2, &line) != 0)
        return false;
    // Parity is not looked at: a pseudo terminal drops it. A rate more than 3 % off carries no character.
    const double off = std::fabs(static_cast<double>(line.c_ospeed) - settings.baud);
    if (off > 0.03 * settings.baud) {
        errno = EINVAL;
        return false;
    }
    return true;
}

void flushSerialLine(int fd) {
    ioctl(fd, TCFLSH, TCIOFLUSH);
}

void askForLowLatency(int fd) {
    serial_struct serial{};
    if (ioctl(fd, TIOCGSERIAL, &serial) != 0)
        return;
    serial.flags |= ASYNC_LOW_LATENCY;
    ioctl(fd, TIOCSSERIAL, &serial);
}

Duration serialCharacterTime(const LinkSettings &settings) {
    const double bits = 1 + settings.dataBits + (settings.parity == parityNone ? 0 : 1) + settings.stopBits;
    return Duration(static_cast<Duration::rep>(bits * 1e9 / settings.baud));
}

} // namespace zvbl
