#include "sim/fronts/Pty.h"

#include "sim/fronts/LineRate.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace sim {

namespace {

constexpr char terminals[] = "/dev/pts/";

std::string targetOf(const std::string &link) {
    char text[4096];
    const ssize_t length = readlink(link.c_str(), text, sizeof text);
    return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

bool makeRaw(int fd) {
    struct termios settings {};
    if (tcgetattr(fd, &settings) != 0) {
        return false;
    }
    cfmakeraw(&settings);
    return tcsetattr(fd, TCSANOW, &settings) == 0;
}

// Whether the place may be taken: nothing there, or a link that a serial port left.
bool mayReplace(const std::string &path) {
    struct stat info {};
    if (lstat(path.c_str(), &info) != 0) {
        return true;
    }
    const bool dangling = stat(path.c_str(), &info) != 0;
    return !targetOf(path).empty() && (dangling || targetOf(path).rfind(terminals, 0) == 0);
}

void closeAndForget(int &fd) {
    if (fd >= 0) {
        ::close(std::exchange(fd, -1));
    }
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

bool Pty::makeTerminal(std::string &error) {
    char name[64];
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0 &&
        ptsname_r(master_, name, sizeof name) == 0) {
        device_ = name;
        slave_ = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
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

void Pty::watchClients() {
    clients_ = 0;
    watch_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (watch_ >= 0 && inotify_add_watch(watch_, device_.c_str(), IN_OPEN | IN_CLOSE) < 0) {
        closeAndForget(watch_);
    }
}

void Pty::close() {
    if (!device_.empty() && targetOf(link_) == device_) {
        unlink(link_.c_str());
    }
    device_.clear();
    closeAndForget(watch_);
    closeAndForget(slave_);
    closeAndForget(master_);
}

void Pty::followClients() {
    alignas(struct inotify_event) char events[4096];
    bool lastLeft = false;
    ssize_t length = 0;
    while (watch_ >= 0 && (length = read(watch_, events, sizeof events)) > 0) {
        for (ssize_t at = 0; at < length;) {
            struct inotify_event event {};
            std::memcpy(&event, events + at, sizeof event);
            clients_ += (event.mask & IN_OPEN) != 0 ? 1 : -1;
            lastLeft = lastLeft || clients_ == 0;
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
    // A real port forgets its unread bytes and its exclusive use when the last client closes it.
    if (lastLeft) {
        tcflush(slave_, TCIFLUSH);
    }
    if (lastLeft && clients_ == 0) {
        ioctl(slave_, TIOCNXCL);
    }
}

unsigned Pty::baud() const { return lineRate(slave_); }

} // namespace sim
