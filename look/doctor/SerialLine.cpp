// The bytes of a serial port, as they come. The bootloader library keeps those to itself that are no answer.

#include <algorithm>
#include <cerrno>
#include <chrono>

#include <asm/termbits.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "look/doctor/SerialChecks.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto before = std::chrono::milliseconds(60);
constexpr auto patience = std::chrono::milliseconds(500); // to the first byte of an answer
constexpr auto rest = std::chrono::milliseconds(40);      // to what comes behind it, adapters that collect included
constexpr unsigned char opening = 0x7F;

struct ModemLine {
    int bit;
    const char *name;
};
constexpr ModemLine modemLines[] = {{TIOCM_DTR, "DTR"}, {TIOCM_RTS, "RTS"}, {TIOCM_CTS, "CTS"}, {TIOCM_DSR, "DSR"}};

class Port {
public:
    Port(const std::string &path, Heard &heard)
        : m_heard(heard), m_descriptor(open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
        if (m_descriptor < 0)
            heard.openError = errno;
        else if (isatty(m_descriptor) == 0)
            heard.isTerminal = false;
    }
    ~Port() {
        if (m_descriptor < 0)
            return;
        ioctl(m_descriptor, TCSETS2, &m_found);
        close(m_descriptor);
    }
    Port(const Port &) = delete;
    Port &operator=(const Port &) = delete;

    bool isOpen() const { return m_descriptor >= 0 && m_heard.isTerminal; }

    void set(const LineSetting &setting) {
        ioctl(m_descriptor, TCGETS2, &m_found);
        termios2 line = m_found;
        line.c_iflag = IGNBRK;
        line.c_oflag = 0;
        line.c_lflag = 0;
        line.c_cflag = CREAD | CLOCAL | CS8 | BOTHER | (BOTHER << IBSHIFT);
        if (setting.parity != 'n')
            line.c_cflag |= setting.parity == 'o' ? PARENB | PARODD : PARENB;
        line.c_ispeed = line.c_ospeed = setting.baud;
        line.c_cc[VMIN] = 1;
        line.c_cc[VTIME] = 0;
        ioctl(m_descriptor, TCSETS2, &line);
        ioctl(m_descriptor, TCFLSH, TCIOFLUSH);
    }

    void readLines() {
        int levels = 0;
        if (ioctl(m_descriptor, TIOCMGET, &levels) != 0)
            return;
        m_heard.hasLines = true;
        for (const ModemLine &line : modemLines)
            m_heard.lines += (m_heard.lines.empty() ? "" : ", ") + std::string(line.name) +
                             ((levels & line.bit) != 0 ? " high" : " low");
    }

    void sendOpening() {
        if (write(m_descriptor, &opening, 1) != 1)
            m_heard.isGone = errno == EIO;
    }

    // All bytes up to a pause: the first within one time, each other within the time after it.
    std::vector<unsigned> listen(Clock::duration first) {
        std::vector<unsigned> bytes;
        Clock::time_point end = Clock::now() + first;
        const Clock::time_point last = Clock::now() + first + patience; // who never pauses is heard no longer
        while (!m_heard.isGone && waitUntil(std::min(end, last))) {
            unsigned char part[256];
            const ssize_t count = read(m_descriptor, part, sizeof part);
            m_heard.isGone = count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR);
            bytes.insert(bytes.end(), part, part + std::max<ssize_t>(count, 0));
            end = Clock::now() + rest;
        }
        return bytes;
    }

private:
    bool waitUntil(Clock::time_point end) const {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd one{m_descriptor, POLLIN, 0};
        return left >= 0 && poll(&one, 1, static_cast<int>(left)) > 0;
    }

    Heard &m_heard;
    termios2 m_found{};
    const int m_descriptor;
};

} // namespace

Heard listenTo(const std::string &path, const LineSetting &setting) {
    Heard heard;
    Port port(path, heard);
    if (!port.isOpen())
        return heard;
    port.set(setting);
    port.readLines();
    heard.unasked = port.listen(before);
    if (heard.unasked.empty() && !heard.isGone) {
        port.sendOpening();
        heard.answer = port.listen(patience);
    }
    return heard;
}
