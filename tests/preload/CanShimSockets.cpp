// The sockets of libcan_shim.so: how they come and go, frames, options.

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>

#include <linux/can/raw.h>
#include <unistd.h>

#include "tests/preload/CanShim.h"

namespace can_shim {

constexpr int mostFds = 1024;
static std::atomic<Socket *> g_sockets[mostFds];

Socket *find(int fd) {
    return fd >= 0 && fd < mostFds ? g_sockets[fd].load() : nullptr;
}

// A closed number and an unknown one are the same to callers of close().
Socket *takeOut(int fd) {
    return fd >= 0 && fd < mostFds ? g_sockets[fd].exchange(nullptr) : nullptr;
}

int open(int type, bool netlink) {
    REAL(close);
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | (type & (SOCK_CLOEXEC | SOCK_NONBLOCK)), 0, ends) != 0)
        return -1;
    if (ends[0] >= mostFds) {
        real_close(ends[0]);
        real_close(ends[1]);
        return failWith(EMFILE);
    }
    auto *socket = new Socket;
    socket->netlink = netlink;
    socket->otherEnd = ends[1];
    g_sockets[ends[0]] = socket;
    return ends[0];
}

int bindTo(Socket &socket, int index) {
    REAL(close);
    const std::string name = nameOf(index);
    if (name.empty() || socket.otherEnd < 0 || socket.netlink)
        return failWith(name.empty() ? ENODEV : EINVAL);
    const int control = connectTo(name);
    if (control < 0)
        return -1;
    Request join;
    join.verb = Verb::join;
    const Answer answer = request(control, join, &socket.options, socket.otherEnd);
    real_close(socket.otherEnd);
    socket.otherEnd = -1;
    socket.control = control;
    socket.index = index;
    return answer.error ? failWith(answer.error) : 0;
}

int close(Socket *socket) {
    REAL(close);
    for (const int fd : {socket->otherEnd, socket->control})
        if (fd >= 0)
            real_close(fd);
    delete socket;
    return 0;
}

ssize_t sendFrame(Socket &socket, const void *bytes, std::size_t size) {
    if (socket.netlink)
        return converse(socket, bytes, size);
    if (size != sizeof(can_frame))
        return failWith(EINVAL);
    Request what;
    what.verb = Verb::send;
    std::memcpy(&what.frame, bytes, sizeof what.frame);
    const std::lock_guard<std::mutex> lock(socket.mutex);
    const Answer answer = socket.control < 0 ? Answer{ENXIO, 0, 0} : request(socket.control, what);
    return answer.error ? failWith(answer.error) : static_cast<ssize_t>(sizeof what.frame);
}

static void fillIn(msghdr &message, const Socket &socket) {
    if (!message.msg_name)
        return;
    sockaddr_can from{};
    from.can_family = AF_CAN;
    from.can_ifindex = socket.index;
    std::memcpy(message.msg_name, &from, std::min<std::size_t>(message.msg_namelen, sizeof from));
    message.msg_namelen = sizeof from;
}

ssize_t receive(int fd, Socket &socket, msghdr &message, int flags) {
    REAL(recvmsg);
    if (socket.netlink)
        return real_recvmsg(fd, &message, flags);
    Delivery delivery;
    iovec part{&delivery, sizeof delivery};
    msghdr own{};
    own.msg_iov = &part;
    own.msg_iovlen = 1;
    own.msg_control = message.msg_control;
    own.msg_controllen = message.msg_controllen;
    const ssize_t count = real_recvmsg(fd, &own, flags);
    if (count < 0)
        return count;
    if (count == 0 || delivery.error)
        return failWith(count == 0 ? ENODEV : delivery.error); // 0: the bus program has ended
    gettimeofday(&socket.lastHeard, nullptr);
    fillIn(message, socket);
    message.msg_controllen = own.msg_controllen;
    message.msg_flags = own.msg_flags | delivery.messageFlags;
    std::size_t done = 0;
    for (std::size_t i = 0; i < message.msg_iovlen && done < sizeof delivery.frame; ++i) {
        const std::size_t fits = std::min(message.msg_iov[i].iov_len, sizeof delivery.frame - done);
        std::memcpy(message.msg_iov[i].iov_base, reinterpret_cast<char *>(&delivery.frame) + done, fits);
        done += fits;
    }
    return static_cast<ssize_t>(done);
}

ssize_t receive(int fd, Socket &socket, void *bytes, std::size_t size, int flags) {
    iovec part{bytes, size};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    return receive(fd, socket, message, flags);
}

static int setFilters(Options &options, const void *value, socklen_t size) {
    if (size % sizeof(can_filter) != 0 || size > maxFilters * sizeof(can_filter))
        return failWith(EINVAL);
    std::memcpy(options.filter, value, size);
    options.filters = static_cast<std::uint32_t>(size / sizeof(can_filter));
    return 0;
}

static std::uint32_t *numberOf(Options &options, int name) {
    switch (name) {
    case CAN_RAW_ERR_FILTER: return &options.errorMask;
    case CAN_RAW_LOOPBACK: return &options.loopback;
    case CAN_RAW_RECV_OWN_MSGS: return &options.ownFrames;
    default: return nullptr;
    }
}

int setOption(Socket &socket, int name, const void *value, socklen_t size) {
    std::uint32_t *number = numberOf(socket.options, name);
    if (name == CAN_RAW_FILTER) {
        if (setFilters(socket.options, value, size) != 0)
            return -1;
    } else if (number && size == sizeof *number) {
        std::memcpy(number, value, sizeof *number);
    } else {
        return failWith(number ? EINVAL : ENOPROTOOPT);
    }
    if (socket.control < 0)
        return 0;
    Request tune;
    tune.verb = Verb::tune;
    const std::lock_guard<std::mutex> lock(socket.mutex);
    const Answer answer = request(socket.control, tune, &socket.options);
    return answer.error ? failWith(answer.error) : 0;
}

int getOption(Socket &socket, int name, void *value, socklen_t *size) {
    const std::uint32_t *number = numberOf(socket.options, name);
    const void *from = name == CAN_RAW_FILTER ? static_cast<const void *>(socket.options.filter) : number;
    if (!from)
        return failWith(ENOPROTOOPT);
    const std::size_t length = number ? sizeof *number : socket.options.filters * sizeof(can_filter);
    *size = static_cast<socklen_t>(std::min<std::size_t>(*size, length));
    std::memcpy(value, from, *size);
    return 0;
}

} // namespace can_shim
