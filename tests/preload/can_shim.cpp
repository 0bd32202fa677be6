// Preloaded, it puts raw CAN sockets (AF_CAN, SOCK_RAW, CAN_RAW) onto the buses of can-bus, for machines
// whose kernel has none: CAN_SHIM_DIR holds one socket per interface. Without that variable nothing changes.
//
// A CAN socket is one end of an AF_UNIX pair from the start, so that poll, select, O_NONBLOCK, SO_TIMESTAMP
// and close are the kernel's own. bind() hands the other end to the bus; what is sent, and the filters,
// travel over a second connection and are answered, so that a write comes back with its errno. An rtnetlink
// socket is such a pair too: what is sent to it is answered at once, about the buses and nothing else.

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstring>

#include <linux/can/raw.h>
#include <linux/rtnetlink.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "tests/preload/CanShim.h"

using namespace can_shim;

#pragma GCC visibility push(default)
extern "C" {

int socket(int family, int type, int protocol) {
    REAL(socket);
    const bool can = family == AF_CAN && (type & ~(SOCK_CLOEXEC | SOCK_NONBLOCK)) == SOCK_RAW && protocol == CAN_RAW;
    const bool netlink = family == AF_NETLINK && protocol == NETLINK_ROUTE;
    return (can || netlink) && !directory().empty() ? open(type, netlink) : real_socket(family, type, protocol);
}

int bind(int fd, const sockaddr *address, socklen_t length) {
    REAL(bind);
    Socket *socket = find(fd);
    if (!socket)
        return real_bind(fd, address, length);
    sockaddr_can can{};
    if (length < offsetof(sockaddr_can, can_addr) + sizeof can.can_addr.tp)
        return failWith(EINVAL);
    std::memcpy(&can, address, std::min<std::size_t>(length, sizeof can));
    return bindTo(*socket, can.can_ifindex);
}

int close(int fd) {
    REAL(close);
    if (Socket *socket = takeOut(fd))
        close(socket);
    return real_close(fd);
}

ssize_t write(int fd, const void *bytes, size_t size) {
    REAL(write);
    Socket *socket = find(fd);
    return socket ? sendFrame(*socket, bytes, size) : real_write(fd, bytes, size);
}

ssize_t send(int fd, const void *bytes, size_t size, int flags) {
    REAL(send);
    Socket *socket = find(fd);
    return socket ? sendFrame(*socket, bytes, size) : real_send(fd, bytes, size, flags);
}

ssize_t sendto(int fd, const void *bytes, size_t size, int flags, const sockaddr *address, socklen_t length) {
    REAL(sendto);
    Socket *socket = find(fd);
    return socket ? sendFrame(*socket, bytes, size) : real_sendto(fd, bytes, size, flags, address, length);
}

ssize_t sendmsg(int fd, const msghdr *message, int flags) {
    REAL(sendmsg);
    Socket *socket = find(fd);
    if (!socket)
        return real_sendmsg(fd, message, flags);
    return message->msg_iovlen == 1 ? sendFrame(*socket, message->msg_iov->iov_base, message->msg_iov->iov_len)
                                    : failWith(EINVAL);
}

ssize_t read(int fd, void *bytes, size_t size) {
    REAL(read);
    Socket *socket = find(fd);
    return socket ? receive(fd, *socket, bytes, size, 0) : real_read(fd, bytes, size);
}

ssize_t recv(int fd, void *bytes, size_t size, int flags) {
    REAL(recv);
    Socket *socket = find(fd);
    return socket ? receive(fd, *socket, bytes, size, flags) : real_recv(fd, bytes, size, flags);
}

ssize_t recvfrom(int fd, void *bytes, size_t size, int flags, sockaddr *address, socklen_t *length) {
    REAL(recvfrom);
    Socket *socket = find(fd);
    if (!socket)
        return real_recvfrom(fd, bytes, size, flags, address, length);
    iovec part{bytes, size};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_name = address;
    message.msg_namelen = length ? *length : 0;
    const ssize_t count = receive(fd, *socket, message, flags);
    if (count >= 0 && length)
        *length = message.msg_namelen;
    return count;
}

ssize_t recvmsg(int fd, msghdr *message, int flags) {
    REAL(recvmsg);
    Socket *socket = find(fd);
    return socket ? receive(fd, *socket, *message, flags) : real_recvmsg(fd, message, flags);
}

int setsockopt(int fd, int level, int name, const void *value, socklen_t size) {
    REAL(setsockopt);
    Socket *socket = find(fd);
    return socket && level == SOL_CAN_RAW ? setOption(*socket, name, value, size)
                                          : real_setsockopt(fd, level, name, value, size);
}

int getsockopt(int fd, int level, int name, void *value, socklen_t *size) {
    REAL(getsockopt);
    Socket *socket = find(fd);
    return socket && level == SOL_CAN_RAW ? getOption(*socket, name, value, size)
                                          : real_getsockopt(fd, level, name, value, size);
}

unsigned if_nametoindex(const char *name) {
    REAL(if_nametoindex);
    const int index = indexOf(name);
    return index ? static_cast<unsigned>(index) : real_if_nametoindex(name);
}

char *if_indextoname(unsigned index, char *name) {
    REAL(if_indextoname);
    const std::string found = nameOf(static_cast<int>(index));
    return found.empty() || found.size() >= IFNAMSIZ ? real_if_indextoname(index, name)
                                                     : std::strcpy(name, found.c_str());
}

int ioctl(int fd, unsigned long what, ...) {
    REAL(ioctl);
    va_list rest;
    va_start(rest, what);
    void *argument = va_arg(rest, void *);
    va_end(rest);
    Socket *socket = find(fd);
    if (socket && what == SIOCGSTAMP) {
        std::memcpy(argument, &socket->lastHeard, sizeof socket->lastHeard);
        return 0;
    }
    int result = 0;
    return answerAbout(what, argument, result) ? result : real_ioctl(fd, what, argument);
}
}
#pragma GCC visibility pop
