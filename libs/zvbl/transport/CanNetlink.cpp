#include "libs/zvbl/transport/CanNetlink.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include <linux/can/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace zvbl {
namespace {

constexpr std::size_t longestMessage = 32768; // what the kernel packs one interface into at most
constexpr timeval patience{1, 0};
constexpr char canKind[] = "can"; // of interfaces with a controller; virtual ones are of another

using Bytes = std::vector<char>;

// Attribute with its padding. Nested ones are attributes whose value is attributes.
Bytes attribute(unsigned short type, const void *value, std::size_t size) {
    const rtattr head{static_cast<unsigned short>(RTA_LENGTH(size)), type};
    Bytes bytes(RTA_SPACE(size));
    std::memcpy(bytes.data(), &head, sizeof head);
    std::memcpy(bytes.data() + RTA_LENGTH(0), value, size);
    return bytes;
}

Bytes attribute(unsigned short type, const Bytes &value) {
    return attribute(type, value.data(), value.size());
}

Bytes message(unsigned short type, const ifinfomsg &interface, const Bytes &attributes) {
    constexpr std::size_t front = NLMSG_SPACE(sizeof interface);
    Bytes bytes(front + attributes.size());
    nlmsghdr head{};
    head.nlmsg_len = static_cast<__u32>(bytes.size());
    head.nlmsg_type = type;
    head.nlmsg_flags = static_cast<__u16>(NLM_F_REQUEST | (type == RTM_GETLINK ? 0 : NLM_F_ACK));
    std::memcpy(bytes.data(), &head, sizeof head);
    std::memcpy(bytes.data() + NLMSG_HDRLEN, &interface, sizeof interface);
    std::copy(attributes.begin(), attributes.end(), bytes.begin() + front);
    return bytes;
}

int converse(int fd, const Bytes &question, Bytes &answer) {
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    if (::send(fd, question.data(), question.size(), 0) < 0)
        return errno;
    answer.resize(longestMessage);
    ssize_t count = 0;
    do
        count = ::recv(fd, answer.data(), answer.size(), 0);
    while (count < 0 && errno == EINTR);
    if (count < 0)
        return errno;
    answer.resize(static_cast<std::size_t>(count));
    nlmsghdr head{};
    if (answer.size() < sizeof head)
        return EPROTO;
    std::memcpy(&head, answer.data(), sizeof head);
    if (head.nlmsg_type != NLMSG_ERROR)
        return 0;
    int error = -EPROTO;
    if (answer.size() >= NLMSG_HDRLEN + sizeof error)
        std::memcpy(&error, answer.data() + NLMSG_HDRLEN, sizeof error);
    return -error;
}

// One question, and the first message of its answer. An errno that is the answer is the result.
int ask(const Bytes &question, Bytes &answer) {
    const int fd = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
    if (fd < 0)
        return errno;
    const int error = converse(fd, question, answer);
    ::close(fd);
    return error;
}

int tell(const Bytes &command) {
    Bytes answer;
    return ask(command, answer);
}

// The value of the first attribute of a type; null and 0 if there is none.
std::pair<const char *, std::size_t> find(unsigned short type, const char *attributes, std::size_t size) {
    while (size >= sizeof(rtattr)) {
        rtattr head{};
        std::memcpy(&head, attributes, sizeof head);
        if (head.rta_len < sizeof head || head.rta_len > size)
            break;
        if ((head.rta_type & NLA_TYPE_MASK) == type)
            return {attributes + RTA_LENGTH(0), head.rta_len - RTA_LENGTH(0)};
        const std::size_t stride = std::min<std::size_t>(size, RTA_ALIGN(head.rta_len));
        attributes += stride;
        size -= stride;
    }
    return {nullptr, 0};
}

ifinfomsg interfaceOf(int index) {
    ifinfomsg interface {};
    interface.ifi_index = index;
    return interface;
}

int setUp(int index, bool up) {
    ifinfomsg interface = interfaceOf(index);
    interface.ifi_change = IFF_UP;
    interface.ifi_flags = up ? IFF_UP : 0;
    return tell(message(RTM_NEWLINK, interface, {}));
}

int setTiming(int index, unsigned bitsPerSecond) {
    can_bittiming timing{};
    timing.bitrate = bitsPerSecond; // and the driver works out the rest
    const Bytes data = attribute(IFLA_CAN_BITTIMING, &timing, sizeof timing);
    Bytes info = attribute(IFLA_INFO_KIND, canKind, sizeof canKind);
    const Bytes nested = attribute(IFLA_INFO_DATA, data);
    info.insert(info.end(), nested.begin(), nested.end());
    return tell(message(RTM_NEWLINK, interfaceOf(index), attribute(IFLA_LINKINFO, info)));
}

} // namespace

int readCanBitRate(int interfaceIndex, unsigned &bitsPerSecond) {
    bitsPerSecond = 0;
    Bytes answer;
    if (const int error = ask(message(RTM_GETLINK, interfaceOf(interfaceIndex), {}), answer); error != 0)
        return error;
    const std::size_t front = NLMSG_SPACE(sizeof(ifinfomsg));
    if (answer.size() < front)
        return EPROTO;
    const auto info = find(IFLA_LINKINFO, answer.data() + front, answer.size() - front);
    const auto kind = find(IFLA_INFO_KIND, info.first, info.second);
    if (kind.second < sizeof canKind || std::memcmp(kind.first, canKind, sizeof canKind) != 0)
        return 0;
    const auto data = find(IFLA_INFO_DATA, info.first, info.second);
    const auto timing = find(IFLA_CAN_BITTIMING, data.first, data.second);
    if (timing.second >= sizeof bitsPerSecond)
        std::memcpy(&bitsPerSecond, timing.first + offsetof(can_bittiming, bitrate), sizeof bitsPerSecond);
    return 0;
}

int mayChangeCanInterface(int interfaceIndex) {
    return tell(message(RTM_SETLINK, interfaceOf(interfaceIndex), {})); // changes nothing
}

int setCanBitRate(int interfaceIndex, unsigned bitsPerSecond) {
    if (const int error = setUp(interfaceIndex, false); error != 0)
        return error;
    const int error = setTiming(interfaceIndex, bitsPerSecond);
    const int upError = setUp(interfaceIndex, true);
    return error ? error : upError;
}

} // namespace zvbl
