#include "tests/fuzz/Tty.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <cstring>
#include <deque>
#include <time.h>
#include <utility>

#include <asm/termbits.h>
#include <poll.h>
#include <sys/ioctl.h>

namespace {

using fuzz::Input;
using fuzz::Peer;

constexpr int number = 0x40000000; // of the descriptor: no real one is so high
constexpr std::int64_t millisecond = 1000000;
constexpr std::int64_t look = 1000; // what it costs to look at the clock or at the port

struct Arrival {
    std::int64_t at;
    std::vector<std::uint8_t> bytes;
};

struct Tty {
    Peer *peer = nullptr;
    Input *damage = nullptr;
    std::deque<Arrival> arrivals;
    termios2 line{};
    bool gone = false;
    bool twice = false; // the answer to what was written last
    std::int64_t now = 0;
    fuzz::TtyFault fault;
    bool failed = false;
};

Tty tty;
fuzz::TtyFault next;

// Whether it is this call that fails.
bool fails(const char *call) {
    if (tty.failed || tty.fault.call != call || tty.fault.after-- > 0)
        return false;
    tty.failed = true;
    errno = tty.fault.error;
    return true;
}

int answerOfFailure() {
    return tty.fault.error == 0 ? 0 : -1;
}

// One answer on its way.
void send(std::vector<std::uint8_t> bytes, std::int64_t after) {
    const std::int64_t at = std::max(tty.now + after, tty.arrivals.empty() ? 0 : tty.arrivals.back().at);
    if (!bytes.empty())
        tty.arrivals.push_back({at, std::move(bytes)});
}

void damage(std::vector<std::uint8_t> answer) {
    Input &input = *tty.damage;
    tty.twice = false;
    switch (input.byte()) {
    case 1: break; // lost
    case 2: send(input.bytes(input.byte()), look); break;
    case 3:
        tty.twice = !answer.empty();
        send(answer, look);
        send(answer, look);
        break;
    case 4:
        if (!answer.empty())
            answer[input.byte() % answer.size()] ^= input.byte();
        send(answer, look);
        break;
    case 5:
        answer.resize(std::min<std::size_t>(answer.size(), input.byte()));
        send(answer, look);
        break;
    case 6: send(answer, input.byte() * 16 * millisecond); break;
    case 7:
        send(answer, look);
        send(input.bytes(input.byte() % 16), input.byte() * millisecond);
        break;
    case 8: tty.gone = true; break;
    default: send(answer, look);
    }
}

bool dueNow() {
    return !tty.arrivals.empty() && tty.arrivals.front().at <= tty.now;
}

int setLine(unsigned long request, void *argument) {
    if (request == TCGETS2)
        std::memcpy(argument, &tty.line, sizeof tty.line);
    if (request == TCSETS2)
        std::memcpy(&tty.line, argument, sizeof tty.line);
    if (request == TCFLSH)
        tty.arrivals.clear();
    return 0;
}

} // namespace

namespace fuzz {

void plugIn(Peer &peer, Input &damage) {
    tty = Tty();
    tty.peer = &peer;
    tty.damage = &damage;
    tty.fault = std::exchange(next, {});
}

void failOnce(const TtyFault &fault) {
    next = fault;
}

bool ttyHasFailed() {
    return tty.failed;
}

bool ttyCameTwice() {
    return std::exchange(tty.twice, false);
}

std::int64_t ttyTime() {
    return tty.now;
}

} // namespace fuzz

// The program's own stands in front of the standard library's.
std::chrono::steady_clock::time_point std::chrono::steady_clock::now() noexcept {
    return time_point(duration(tty.now += look));
}

extern "C" {

int __real_open(const char *path, int flags, ...);
int __real_close(int fd);
int __real_isatty(int fd);
int __real_flock(int fd, int operation);
int __real_ioctl(int fd, unsigned long request, ...);
ssize_t __real_read(int fd, void *buffer, size_t count);
ssize_t __real_write(int fd, const void *buffer, size_t count);

int __wrap_open(const char *path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const int mode = va_arg(more, int);
    va_end(more);
    if (std::strcmp(path, fuzz::ttyName) != 0)
        return __real_open(path, flags, mode);
    return fails("open") ? -1 : number;
}

int __wrap_close(int fd) {
    return fd == number ? 0 : __real_close(fd);
}

int __wrap_isatty(int fd) {
    return fd == number ? !fails("isatty") : __real_isatty(fd);
}

int __wrap_flock(int fd, int operation) {
    return fd == number ? -fails("flock") : __real_flock(fd, operation);
}

int __wrap_ioctl(int fd, unsigned long request, ...) {
    va_list more;
    va_start(more, request);
    void *const argument = va_arg(more, void *);
    va_end(more);
    if (fd != number)
        return __real_ioctl(fd, request, argument);
    return fails("ioctl") ? -1 : setLine(request, argument);
}

ssize_t __wrap_read(int fd, void *buffer, size_t count) {
    if (fd != number)
        return __real_read(fd, buffer, count);
    if (fails("read"))
        return answerOfFailure();
    if (tty.gone)
        return 0;
    tty.now += look;
    if (!dueNow()) {
        errno = EAGAIN;
        return -1;
    }
    Arrival &first = tty.arrivals.front();
    const std::size_t taken = std::min(count, first.bytes.size());
    std::memcpy(buffer, first.bytes.data(), taken);
    first.bytes.erase(first.bytes.begin(), first.bytes.begin() + static_cast<std::ptrdiff_t>(taken));
    if (first.bytes.empty())
        tty.arrivals.pop_front();
    return static_cast<ssize_t>(taken);
}

ssize_t __wrap_write(int fd, const void *buffer, size_t count) {
    if (fd != number)
        return __real_write(fd, buffer, count);
    if (fails("write"))
        return answerOfFailure();
    if (tty.gone) {
        errno = EIO;
        return -1;
    }
    const auto *const bytes = static_cast<const std::uint8_t *>(buffer);
    const std::vector<std::uint8_t> sent(bytes, bytes + count);
    damage(tty.peer->answer(sent));
    tty.twice = tty.twice && !tty.peer->mayComeTwice(sent);
    return static_cast<ssize_t>(count);
}

int __wrap_ppoll(struct pollfd *ports, nfds_t, const struct timespec *timeout, const void *) {
    ports->revents = 0;
    if (fails("ppoll")) {
        ports->revents = POLLERR;
        return tty.fault.error == 0 ? 1 : -1;
    }
    if (tty.gone) {
        ports->revents = POLLHUP;
        return 1;
    }
    const std::int64_t until = tty.now + timeout->tv_sec * 1000000000 + timeout->tv_nsec;
    if (ports->events & POLLOUT) {
        ports->revents = POLLOUT;
    } else if (!tty.arrivals.empty() && tty.arrivals.front().at <= until) {
        tty.now = std::max(tty.now, tty.arrivals.front().at);
        ports->revents = POLLIN;
    } else {
        tty.now = until + look;
    }
    return ports->revents != 0;
}

int __wrap_nanosleep(const struct timespec *time, struct timespec *) {
    tty.now += time->tv_sec * 1000000000 + time->tv_nsec;
    return 0;
}
}
