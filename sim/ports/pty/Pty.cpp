#include "sim/ports/pty/Pty.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include "sim/ports/pty/LineRate.h"

namespace sim {

namespace {

constexpr char terminals[] = "/dev/pts/";
constexpr Nanoseconds stragglers = 10 * millisecond; // bytes of a client may arrive after the news of its end

std::string targetOf(const std::string &link) {
    char text[4096];
    const ssize_t length = readlink(link.c_str(), text, sizeof text);
    return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

bool makeRaw(int fd) {
    struct termios settings {};
    if (tcgetattr(fd, &settings) != 0)
        return false;
    cfmakeraw(&settings);
    return tcsetattr(fd, TCSANOW, &settings) == 0;
}

// Whether the place may be taken: nothing there, or a link that a serial port left.
bool mayReplace(const std::string &path) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0)
        return true;
    const bool dangling = stat(path.c_str(), &info) != 0;
    return !targetOf(path).empty() && (dangling || targetOf(path).rfind(terminals, 0) == 0);
}

void closeAndForget(int &fd) {
    if (fd >= 0)
        ::close(std::exchange(fd, -1));
}

} // namespace

bool Pty::open(const std::string &link, std::string &error) {
    m_link = link;
    if (!makeTerminal(error)) {
        close();
        return false;
    }
    watchClients();
    if (!makeLink(error)) {
        close();
        return false;
    }
    return true;
}

// The slave is not opened by its name: libraries that stand in front of open() would come between.
bool Pty::makeTerminal(std::string &error) {
    char name[64];
    m_master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (m_master >= 0 && grantpt(m_master) == 0 && unlockpt(m_master) == 0 &&
        ptsname_r(m_master, name, sizeof name) == 0) {
        m_device = name;
        m_slave = ioctl(m_master, TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    if (m_slave < 0 || !makeRaw(m_slave) || fcntl(m_master, F_SETFL, O_NONBLOCK) != 0) {
        error = std::string("cannot make a pseudo terminal: ") + std::strerror(errno);
        return false;
    }
    return true;
}

bool Pty::makeLink(std::string &error) {
    if (!mayReplace(m_link)) {
        error = "\"" + m_link + "\" is in the way";
        return false;
    }
    const std::string temporary = m_link + "." + std::to_string(getpid());
    if (symlink(m_device.c_str(), temporary.c_str()) != 0 || std::rename(temporary.c_str(), m_link.c_str()) != 0) {
        error = "cannot make the link \"" + m_link + "\": " + std::strerror(errno);
        unlink(temporary.c_str());
        return false;
    }
    return true;
}

// The kernel merges an event with an equal one that stands right before it, and then two clients look
// like one. The directory's own events, which nobody counts, keep those of the terminal apart.
void Pty::watchClients() {
    constexpr std::uint32_t events = IN_OPEN | IN_CLOSE;
    m_clients = 0;
    m_left = m_heard = 0;
    m_watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_watch >= 0) {
        inotify_add_watch(m_watch, terminals, events);
        m_ownEvents = inotify_add_watch(m_watch, m_device.c_str(), events);
    }
    if (m_ownEvents < 0)
        closeAndForget(m_watch);
}

void Pty::close() {
    if (!m_device.empty() && targetOf(m_link) == m_device)
        unlink(m_link.c_str());
    m_device.clear();
    closeAndForget(m_watch);
    closeAndForget(m_slave);
    closeAndForget(m_master);
}

void Pty::followClients(Nanoseconds now) {
    alignas(struct inotify_event) char events[4096];
    ssize_t length = 0;
    while (m_watch >= 0 && (length = ::read(m_watch, events, sizeof events)) > 0) {
        for (ssize_t at = 0; at < length;) {
            struct inotify_event event {};
            std::memcpy(&event, events + at, sizeof event);
            at += static_cast<ssize_t>(sizeof event + event.len);
            if (event.wd != m_ownEvents)
                continue;
            count(std::max(m_clients + ((event.mask & IN_OPEN) != 0 ? 1 : -1), 0), now);
        }
    }
    if (m_clients == 0 && m_heard > m_left + stragglers)
        count(1, now); // somebody is there: an event must have gone astray
}

void Pty::count(int clients, Nanoseconds now) {
    const bool changed = (clients == 0) != (m_clients == 0);
    m_clients = clients;
    if (clients == 0) {
        m_left = now;
        lastClientLeft();
    }
    if (changed && m_listener)
        m_listener(clients > 0);
}

// A real port forgets its unread bytes and its exclusive use when the last client closes it.
void Pty::lastClientLeft() {
    tcflush(m_slave, TCIFLUSH);
    ioctl(m_slave, TIOCNXCL);
}

std::size_t Pty::read(std::uint8_t *bytes, std::size_t room, Nanoseconds now) {
    const ssize_t length = ::read(m_master, bytes, room);
    if (length <= 0)
        return 0;
    m_heard = now;
    return static_cast<std::size_t>(length);
}

bool Pty::write(const Bytes &bytes) {
    const bool somebody = m_clients > 0 || m_watch < 0;
    return somebody && ::write(m_master, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

void Pty::drain() const {
    constexpr int longestMs = 100;
    constexpr int shortestMs = 5; // the kernel takes its time to hand bytes over
    int unread = 0;
    for (int ms = 0; ms < longestMs; ++ms) {
        if (ms >= shortestMs && ioctl(m_slave, FIONREAD, &unread) == 0 && unread == 0)
            break;
        poll(nullptr, 0, 1);
    }
}

bool Pty::hangsUpOnClose() const {
    struct termios settings {};
    return tcgetattr(m_slave, &settings) == 0 && (settings.c_cflag & HUPCL) != 0;
}

void Pty::hangUpOnClose() const {
    struct termios settings {};
    if (tcgetattr(m_slave, &settings) == 0) {
        settings.c_cflag |= HUPCL;
        tcsetattr(m_slave, TCSANOW, &settings);
    }
}

unsigned Pty::baud() const {
    return lineRate(m_slave);
}

} // namespace sim
