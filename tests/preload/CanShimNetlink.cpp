// rtnetlink of libcan_shim.so: RTM_GETLINK, RTM_NEWLINK and RTM_SETLINK, by the interface's number.

#include <cstring>

#include <linux/can/netlink.h>
#include <linux/rtnetlink.h>

#include "tests/preload/CanShim.h"

namespace can_shim {

static void append(std::string &message, unsigned short type, const void *value, std::size_t size) {
    const rtattr head{static_cast<unsigned short>(RTA_LENGTH(size)), type};
    message.append(reinterpret_cast<const char *>(&head), sizeof head);
    message.append(static_cast<const char *>(value), size);
    message.append(RTA_SPACE(size) - RTA_LENGTH(size), '\0');
}

static std::string nested(const Answer &interface) {
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

static std::string linkMessage(const std::string &name, int index, const Answer &interface) {
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

static std::string errorMessage(int error, const nlmsghdr &question) {
    nlmsghdr head{};
    head.nlmsg_len = NLMSG_LENGTH(sizeof(nlmsgerr));
    head.nlmsg_type = NLMSG_ERROR;
    const nlmsgerr body{-error, question};
    return std::string(reinterpret_cast<char *>(&head), sizeof head) +
           std::string(reinterpret_cast<const char *>(&body), sizeof body);
}

// The bit rate that a message sets, 0 if none.
static std::uint32_t bitRateIn(const char *attributes, std::size_t size) {
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

} // namespace can_shim
