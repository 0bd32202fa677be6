#include "tests/zvbl/FakeKernel.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>

#include <fcntl.h>
#include <linux/can.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <net/if.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

Kernel *kernel = nullptr;

namespace {

bool fails(const std::string &call) {
    if (kernel == nullptr)
        return false;
    const auto found = kernel->failing.find(call);
    if (found == kernel->failing.end() || found->second.after-- > 0)
        return false;
    errno = found->second.error;
    kernel->failing.erase(found);
    return true;
}

ssize_t take(std::deque<Message> &messages, void *bytes, size_t room) {
    errno = messages.empty() ? EAGAIN : EINTR;
    if (messages.empty())
        return -1;
    const Message message = messages.front();
    messages.pop_front();
    if (message.empty())
        return -1;
    std::memcpy(bytes, message.data(), std::min(room, message.size()));
    return static_cast<ssize_t>(std::min(room, message.size()));
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int __real_stat(const char *path, struct stat *info);
ssize_t __real_read(int fd, void *bytes, size_t room);
ssize_t __real_write(int fd, const void *bytes, size_t count);

int __wrap_socket(int, int, int) {
    return fails("socket") ? -1 : open("/dev/null", O_RDWR | O_CLOEXEC);
}

int __wrap_setsockopt(int, int, int, const void *, unsigned) {
    return fails("setsockopt") ? -1 : 0;
}

int __wrap_bind(int, const void *, unsigned) {
    return fails("bind") ? -1 : 0;
}

ssize_t __wrap_send(int, const void *, size_t count, int) {
    return fails("send") ? -1 : static_cast<ssize_t>(count);
}

ssize_t __wrap_recv(int, void *bytes, size_t room, int) {
    return fails("recv") ? -1 : take(kernel->received, bytes, room);
}

ssize_t __wrap_read(int fd, void *bytes, size_t room) {
    if (kernel == nullptr)
        return __real_read(fd, bytes, room);
    if (fails("read"))
        return -1;
    if (!kernel->babbles || !kernel->said.empty())
        return take(kernel->said, bytes, room);
    std::memset(bytes, 0x55, room);
    return static_cast<ssize_t>(room);
}

unsigned __wrap_if_nametoindex(const char *) {
    return 7;
}

char *__wrap_if_indextoname(unsigned, char *name) {
    return fails("if_indextoname") ? nullptr : std::strcpy(name, "can0");
}

int __wrap_ioctl(int, unsigned long request, ...) {
    va_list more;
    va_start(more, request);
    void *const argument = va_arg(more, void *);
    va_end(more);
    if (fails("ioctl"))
        return -1;
    if (request == SIOCGIFFLAGS)
        static_cast<ifreq *>(argument)->ifr_flags = IFF_UP;
    if (request == I2C_FUNCS)
        *static_cast<unsigned long *>(argument) = I2C_FUNC_I2C;
    return 0;
}

ssize_t __wrap_write(int fd, const void *bytes, size_t count) {
    if (fails("write"))
        return -1;
    if (kernel != nullptr && !kernel->answers.empty()) {
        kernel->said.push_back(kernel->answers.front());
        kernel->answers.pop_front();
    }
    const bool isFrame = kernel != nullptr && count == sizeof(can_frame);
    return isFrame ? static_cast<ssize_t>(count) : __real_write(fd, bytes, count);
}

int __wrap_ppoll(pollfd *, nfds_t, const timespec *, const sigset_t *) {
    return fails("ppoll") ? -1 : 0;
}

int __wrap_stat(const char *path, struct stat *info) {
    if (fails("stat"))
        return -1;
    const int status = __real_stat(path, info);
    if (kernel == nullptr)
        return status;
    info->st_ino += kernel->newNode;
    info->st_dev += kernel->newDevice;
    return status;
}
}
#pragma GCC visibility pop
