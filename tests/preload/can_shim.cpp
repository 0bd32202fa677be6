// Preloaded, it puts raw CAN sockets (AF_CAN, SOCK_RAW, CAN_RAW) onto the buses of can-bus, for machines
// whose kernel has none: CAN_SHIM_DIR holds one socket per interface. Without that variable nothing changes.
//
// A CAN socket is one end of an AF_UNIX pair from the start, so that poll, select, O_NONBLOCK, SO_TIMESTAMP
// and close are the kernel's own. bind() hands the other end to the bus; what is sent, and the filters,
// travel over a second connection and are answered, so that a write comes back with its errno. An rtnetlink
// socket is such a pair too: what is sent to it is answered at once, about the buses and nothing else.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include <dirent.h>
#include <dlfcn.h>
#include <linux/can/netlink.h>
#include <linux/can/raw.h>
#include <linux/rtnetlink.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/preload/CanBus.h"

namespace {

using namespace can_bus;

template <class Function>
Function real(const char *name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

#define REAL(name) static const auto real_##name = real<decltype(&::name)>(#name)

struct Socket {
    bool netlink = false;
    int otherEnd = -1; // until it is bound; of rtnetlink for ever
    int control = -1;  // once it is
    int index = 0;
    Options options;
    timeval lastHeard{};
    std::mutex mutex;
};

constexpr int mostFds = 1024;
std::atomic<Socket *> g_sockets[mostFds];

Socket *find(int fd) {
    return fd >= 0 && fd < mostFds ? g_sockets[fd].load() : nullptr;
}

// A closed number and an unknown one are the same to callers of close().
Socket *takeOut(int fd) {
    return fd >= 0 && fd < mostFds ? g_sockets[fd].exchange(nullptr) : nullptr;
}

int failWith(int error) {
    errno = error;
    return -1;
}

// ---- interfaces

std::string directory() {
    const char *value = std::getenv("CAN_SHIM_DIR");
    return value ? value : "";
}

std::string pathOf(const std::string &name) {
    return directory() + '/' + name;
}

// As with a kernel's, an interface that went away comes back under another number.
int indexOf(const std::string &name) {
    struct stat status {};
    if (directory().empty() || name.empty() || name.find('/') != std::string::npos ||
        stat(pathOf(name).c_str(), &status) != 0 || !S_ISSOCK(status.st_mode))
        return 0;
    return static_cast<int>(1000 + (status.st_ino & 0x3FFFFFFF));
}

std::string nameOf(int index) {
    std::string name;
    DIR *entries = directory().empty() ? nullptr : opendir(directory().c_str());
    while (const dirent *entry = entries ? readdir(entries) : nullptr)
        if (index != 0 && indexOf(entry->d_name) == index)
            name = entry->d_name;
    if (entries)
        closedir(entries);
    return name;
}

// ---- the bus

int connectTo(const std::string &name) {
    REAL(socket);
    REAL(close);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = pathOf(name);
    if (path.size() >= sizeof address.sun_path)
        return failWith(ENAMETOOLONG);
    std::strcpy(address.sun_path, path.c_str());
    const int fd = real_socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (fd >= 0 && connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
        real_close(fd);
        return failWith(ENODEV);
    }
    return fd;
}

// Sends one request and waits for its answer. ENXIO: the bus is gone.
Answer request(int control, const Request &what, const Options *options = nullptr, int pass = -1) {
    REAL(sendmsg);
    REAL(recv);
    iovec parts[2] = {{const_cast<Request *>(&what), sizeof what}, {nullptr, 0}};
    if (options)
        parts[1] = {const_cast<Options *>(options), offsetof(Options, filter) + options->filters * sizeof(can_filter)};
    alignas(cmsghdr) char space[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = parts;
    message.msg_iovlen = options ? 2 : 1;
    if (pass >= 0) {
        message.msg_control = space;
        message.msg_controllen = sizeof space;
        cmsghdr *header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(header), &pass, sizeof pass);
    }
    Answer answer;
    ssize_t count = real_sendmsg(control, &message, MSG_NOSIGNAL);
    while (count > 0 && (count = real_recv(control, &answer, sizeof answer, 0)) < 0 && errno == EINTR)
        count = 1;
    if (count != static_cast<ssize_t>(sizeof answer))
        answer.error = ENXIO;
    return answer;
}

Answer ask(const std::string &name, const Request &what = {}) {
    REAL(close);
    Answer answer;
    answer.error = ENODEV;
    const int control = connectTo(name);
    if (control >= 0) {
        answer = request(control, what);
        real_close(control);
    }
    return answer;
}

// ---- a socket's life

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

// ---- rtnetlink: RTM_GETLINK, RTM_NEWLINK and RTM_SETLINK, by the interface's number

void append(std::string &message, unsigned short type, const void *value, std::size_t size) {
    const rtattr head{static_cast<unsigned short>(RTA_LENGTH(size)), type};
    message.append(reinterpret_cast<const char *>(&head), sizeof head);
    message.append(static_cast<const char *>(value), size);
    message.append(RTA_SPACE(size) - RTA_LENGTH(size), '\0');
}

std::string nested(const Answer &interface) {
    const bool real = interface.bitRate != 0;
    can_bittiming timing{};
    timing.bitrate = interface.bitRate;
    std::string info, data;
    append(info, IFLA_INFO_KIND, real ? "can" : "vcan", real ? 4 : 5);
    if (real) {
        append(data, IFLA_CAN_BITTIMING, &timing, sizeof timing);
        append(info, IFLA_INFO_DATA, data.data(), data.size());
    }
    return info;
}

std::string linkMessage(const std::string &name, int index, const Answer &interface) {
    ifinfomsg about{};
    about.ifi_type = 280; // CAN
    about.ifi_index = index;
    about.ifi_flags = interface.flags;
    std::string attributes;
    append(attributes, IFLA_IFNAME, name.c_str(), name.size() + 1);
    const std::string info = nested(interface);
    append(attributes, IFLA_LINKINFO, info.data(), info.size());
    nlmsghdr head{};
    head.nlmsg_len = static_cast<__u32>(NLMSG_LENGTH(sizeof about) + attributes.size());
    head.nlmsg_type = RTM_NEWLINK;
    return std::string(reinterpret_cast<char *>(&head), sizeof head) +
           std::string(reinterpret_cast<char *>(&about), sizeof about) + attributes;
}

std::string errorMessage(int error, const nlmsghdr &question) {
    nlmsghdr head{};
    head.nlmsg_len = NLMSG_LENGTH(sizeof(nlmsgerr));
    head.nlmsg_type = NLMSG_ERROR;
    const nlmsgerr body{-error, question};
    return std::string(reinterpret_cast<char *>(&head), sizeof head) +
           std::string(reinterpret_cast<const char *>(&body), sizeof body);
}

// The bit rate that a message sets, 0 if none.
std::uint32_t bitRateIn(const char *attributes, std::size_t size) {
    for (const rtattr *at = reinterpret_cast<const rtattr *>(attributes); RTA_OK(at, size); at = RTA_NEXT(at, size)) {
        const auto *value = static_cast<const char *>(RTA_DATA(at));
        const int type = at->rta_type & NLA_TYPE_MASK;
        if (type == IFLA_LINKINFO || type == IFLA_INFO_DATA) {
            if (const std::uint32_t rate = bitRateIn(value, RTA_PAYLOAD(at)))
                return rate;
        }
        // Inside the data of a kind the numbers mean something else: told by the size.
        if (type == IFLA_CAN_BITTIMING && RTA_PAYLOAD(at) == sizeof(can_bittiming)) {
            std::uint32_t rate = 0;
            std::memcpy(&rate, value, sizeof rate);
            return rate;
        }
    }
    return 0;
}

ssize_t converse(Socket &socket, const void *bytes, std::size_t size) {
    REAL(send);
    if (size < NLMSG_LENGTH(sizeof(ifinfomsg)))
        return failWith(EINVAL);
    const std::string message(static_cast<const char *>(bytes), size);
    nlmsghdr head;
    ifinfomsg about;
    std::memcpy(&head, message.data(), sizeof head);
    std::memcpy(&about, message.data() + NLMSG_HDRLEN, sizeof about);
    Request what;
    if (head.nlmsg_type != RTM_GETLINK) {
        what.verb = Verb::change;
        what.which = about.ifi_change;
        what.flags = about.ifi_flags;
        what.bitRate = bitRateIn(message.data() + NLMSG_LENGTH(sizeof about), size - NLMSG_LENGTH(sizeof about));
    }
    const std::string name = nameOf(about.ifi_index);
    const Answer answer = ask(name, what);
    const std::string reply = head.nlmsg_type == RTM_GETLINK && !answer.error
                                  ? linkMessage(name, about.ifi_index, answer)
                                  : errorMessage(answer.error, head);
    real_send(socket.otherEnd, reply.data(), reply.size(), MSG_NOSIGNAL);
    return static_cast<ssize_t>(size);
}

// ---- frames

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

void fillIn(msghdr &message, const Socket &socket) {
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

// ---- options

int setFilters(Options &options, const void *value, socklen_t size) {
    if (size % sizeof(can_filter) != 0 || size > maxFilters * sizeof(can_filter))
        return failWith(EINVAL);
    std::memcpy(options.filter, value, size);
    options.filters = static_cast<std::uint32_t>(size / sizeof(can_filter));
    return 0;
}

std::uint32_t *numberOf(Options &options, int name) {
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

// Whether it was a question about an interface of ours; then the answer is in `result`.
bool answerAbout(unsigned long what, void *argument, int &result) {
    if (directory().empty() || !argument)
        return false;
    if (what != SIOCGIFNAME && what != SIOCGIFINDEX && what != SIOCGIFFLAGS && what != SIOCGIFMTU)
        return false;
    auto *interface = static_cast<ifreq *>(argument);
    const std::string name = what == SIOCGIFNAME
                                 ? nameOf(interface->ifr_ifindex)
                                 : std::string(interface->ifr_name, strnlen(interface->ifr_name, IFNAMSIZ));
    const int index = indexOf(name);
    if (index == 0)
        return false;
    const Answer answer = what == SIOCGIFFLAGS ? ask(name) : Answer{};
    if (what == SIOCGIFNAME)
        std::memcpy(interface->ifr_name, name.c_str(), std::min<std::size_t>(name.size() + 1, IFNAMSIZ));
    else if (what == SIOCGIFINDEX)
        interface->ifr_ifindex = index;
    else if (what == SIOCGIFMTU)
        interface->ifr_mtu = CAN_MTU;
    else
        interface->ifr_flags = static_cast<short>(answer.flags);
    result = answer.error ? failWith(answer.error) : 0;
    return true;
}

} // namespace

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
