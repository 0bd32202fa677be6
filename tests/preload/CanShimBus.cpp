// The interfaces of libcan_shim.so, which are sockets in a directory, and what is asked of a bus.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "tests/preload/CanShim.h"

namespace can_shim {

std::string directory() {
    const char *value = std::getenv("CAN_SHIM_DIR");
    return value ? value : "";
}

static std::string pathOf(const std::string &name) {
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
Answer request(int control, const Request &what, const Options *options, int pass) {
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

Answer ask(const std::string &name, const Request &what) {
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

} // namespace can_shim
