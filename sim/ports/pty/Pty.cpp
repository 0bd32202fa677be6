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
constexpr Nanoseconds stragglers = 10 * millisecond; // bytes of a client may arrive behind the news of its end

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
    link_ = link;
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
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0 && ptsname_r(master_, name, sizeof name) == 0) {
        device_ = name;
        slave_ = ioctl(master_, TIOCGPTPEER, O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    if (slave_ < 0 || !makeRaw(slave_) || fcntl(master_, F_SETFL, O_NONBLOCK) != 0) {
        error = std::string("cannot make a pseudo terminal: ") + std::strerror(errno);
        return false;
    }
    return true;
}

bool Pty::makeLink(std::string &error) {
    if (!mayReplace(link_)) {
        error = "\"" + link_ + "\" is in the way";
        return false;
    }
    const std::string temporary = link_ + "." + std::to_string(getpid());
    if (symlink(device_.c_str(), temporary.c_str()) != 0 || std::rename(temporary.c_str(), link_.c_str()) != 0) {
        error = "cannot make the link \"" + link_ + "\": " + std::strerror(errno);
        unlink(temporary.c_str());
        return false;
    }
    return true;
}

// The kernel merges an event with an equal one that stands right before it, and then two clients look
// like one. The directory's own events, which nobody counts, keep those of the terminal apart.
void Pty::watchClients() {
    constexpr std::uint32_t events = IN_OPEN | IN_CLOSE;
    clients_ = 0;
    left_ = heard_ = 0;
    watch_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (watch_ >= 0) {
        inotify_add_watch(watch_, terminals, events);
        ownEvents_ = inotify_add_watch(watch_, device_.c_str(), events);
    }
    if (ownEvents_ < 0)
        closeAndForget(watch_);
}

void Pty::close() {
    if (!device_.empty() && targetOf(link_) == device_)
        unlink(link_.c_str());
    device_.clear();
    closeAndForget(watch_);
    closeAndForget(slave_);
    closeAndForget(master_);
}

void Pty::followClients(Nanoseconds now) {
    alignas(struct inotify_event) char events[4096];
    ssize_t length = 0;
    while (watch_ >= 0 && (length = ::read(watch_, events, sizeof events)) > 0) {
        for (ssize_t at = 0; at < length;) {
            struct inotify_event event {};
            std::memcpy(&event, events + at, sizeof event);
            at += static_cast<ssize_t>(sizeof event + event.len);
            if (event.wd != ownEvents_)
                continue;
            count(std::max(clients_ + ((event.mask & IN_OPEN) != 0 ? 1 : -1), 0), now);
        }
    }
    if (clients_ == 0 && heard_ > left_ + stragglers)
        count(1, now); // somebody is there: an event must have gone astray
}

void Pty::count(int clients, Nanoseconds now) {
    const bool changed = (clients == 0) != (clients_ == 0);
    clients_ = clients;
    if (clients == 0) {
        left_ = now;
        lastClientLeft();
    }
    if (changed && listener_)
        listener_(clients > 0);
}

// A real port forgets its unread bytes and its exclusive use when the last client closes it.
void Pty::lastClientLeft() {
    tcflush(slave_, TCIFLUSH);
    ioctl(slave_, TIOCNXCL);
}

std::size_t Pty::read(std::uint8_t *bytes, std::size_t room, Nanoseconds now) {
    const ssize_t length = ::read(master_, bytes, room);
    if (length <= 0)
        return 0;
    heard_ = now;
    return static_cast<std::size_t>(length);
}

bool Pty::write(const Bytes &bytes) {
    const bool somebody = clients_ > 0 || watch_ < 0;
    return somebody && ::write(master_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

void Pty::drain() const {
    constexpr int longestMs = 100;
    constexpr int shortestMs = 5; // the kernel takes its time to hand bytes over
    int unread = 0;
    for (int ms = 0; ms < longestMs; ++ms) {
        if (ms >= shortestMs && ioctl(slave_, FIONREAD, &unread) == 0 && unread == 0)
            break;
        poll(nullptr, 0, 1);
    }
}

bool Pty::hangsUpOnClose() const {
    struct termios settings {};
    return tcgetattr(slave_, &settings) == 0 && (settings.c_cflag & HUPCL) != 0;
}

void Pty::hangUpOnClose() const {
    struct termios settings {};
    if (tcgetattr(slave_, &settings) == 0) {
        settings.c_cflag |= HUPCL;
        tcsetattr(slave_, TCSANOW, &settings);
    }
}

unsigned Pty::baud() const {
    return lineRate(slave_);
}

} // namespace sim
