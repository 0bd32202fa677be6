#include "tests/preload/Bus.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <stdexcept>

#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace can_bus {

static bool passes(const Options &options, const can_frame &frame) {
    if (frame.can_id & CAN_ERR_FLAG)
        return (frame.can_id & CAN_ERR_MASK & options.errorMask) != 0;
    return std::any_of(options.filter, options.filter + options.filters, [&](const can_filter &filter) {
        const bool matches = ((frame.can_id ^ filter.can_id) & filter.can_mask & ~CAN_INV_FILTER) == 0;
        return matches != ((filter.can_id & CAN_INV_FILTER) != 0);
    });
}

void Bus::plug() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (m_path.size() >= sizeof address.sun_path)
        throw std::runtime_error("the path is too long for a socket");
    std::strcpy(address.sun_path, m_path.c_str());
    unlink(m_path.c_str());
    m_listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (bind(m_listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 || listen(m_listener, 64) != 0)
        throw std::runtime_error(m_path + ": " + std::strerror(errno));
}

void Bus::unplug() {
    tellAll(ENODEV);
    m_queue.clear();
    for (auto &member : m_members) {
        close(member->control);
        member->control = -1;
        m_unbound.push_back(std::move(member)); // its socket stays, and hears nothing more
    }
    m_members.clear();
    close(m_listener);
    m_listener = -1;
    unlink(m_path.c_str());
}

void Bus::tellAll(int error) {
    Delivery delivery;
    delivery.error = error;
    for (const auto &member : m_members)
        if (member->data >= 0)
            send(member->data, &delivery, sizeof delivery, MSG_DONTWAIT | MSG_NOSIGNAL);
}

void Bus::serve(int commands) {
    std::string text;
    for (;;) {
        std::vector<pollfd> fds = {{commands, POLLIN, 0}, {m_listener, POLLIN, 0}};
        for (const auto &member : m_members)
            fds.push_back({member->control, POLLIN, 0});
        const timespec time = untilDue();
        ppoll(fds.data(), fds.size(), m_queue.empty() ? nullptr : &time, nullptr);
        deliverDue();
        for (std::size_t i = 2; i < fds.size(); ++i)
            if (fds[i].revents)
                listenTo(*m_members[i - 2]);
        forgetEnded();
        if (fds[1].revents)
            accept();
        if (fds[0].revents) {
            char more[4096];
            const ssize_t count = read(commands, more, sizeof more);
            if (count <= 0)
                return;
            text.append(more, static_cast<std::size_t>(count));
        }
        for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
            std::cout << (obey(text.substr(0, end)) ? "ok" : "what?") << std::endl;
            text.erase(0, end + 1);
        }
    }
}

timespec Bus::untilDue() const {
    if (m_queue.empty())
        return {};
    const auto left = std::chrono::nanoseconds(m_queue.front().due - Clock::now()).count();
    return {0, std::clamp<long>(left, 0, 999999999)};
}

void Bus::accept() {
    const int fd = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd >= 0)
        m_members.push_back(std::make_unique<Member>(fd));
}

void Bus::forgetEnded() {
    const auto ended = [](const std::unique_ptr<Member> &member) { return member->ended; };
    for (Waiting &waiting : m_queue)
        if (waiting.sender && waiting.sender->ended)
            waiting.sender = nullptr;
    m_members.erase(std::remove_if(m_members.begin(), m_members.end(), ended), m_members.end());
}

void Bus::listenTo(Member &member) {
    static char bytes[sizeof(Request) + sizeof(Options)];
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
    iovec part{bytes, sizeof bytes};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t count = recvmsg(member.control, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (count < static_cast<ssize_t>(sizeof(Request))) {
        member.ended = true;
        return;
    }
    int passed = -1;
    if (const cmsghdr *header = CMSG_FIRSTHDR(&message))
        std::memcpy(&passed, CMSG_DATA(header), sizeof passed);
    Answer answer;
    answer.error = carryOut(member, bytes, static_cast<std::size_t>(count), passed);
    answer.flags = flags();
    answer.bitRate = static_cast<std::uint32_t>(m_bitRate);
    send(member.control, &answer, sizeof answer, MSG_NOSIGNAL);
}

std::uint32_t Bus::flags() const {
    const int running = m_off ? 0 : int(IFF_RUNNING);
    return static_cast<std::uint32_t>(int(IFF_NOARP) | (m_up ? int(IFF_UP) | running : 0));
}

int Bus::carryOut(Member &member, const char *bytes, std::size_t size, int passed) {
    Request request;
    std::memcpy(&request, bytes, sizeof request);
    if (request.verb == Verb::join)
        member.data = passed;
    if (request.verb == Verb::join || request.verb == Verb::tune) {
        std::memcpy(&member.options, bytes + sizeof request, std::min(size - sizeof request, sizeof member.options));
        return 0;
    }
    if (request.verb == Verb::change)
        return change(request);
    return request.verb == Verb::send ? take(request.frame, member) : 0;
}

int Bus::change(const Request &request) {
    if (m_locked)
        return EPERM;
    if (request.bitRate != 0 && (m_bitRate == 0 || m_fixed || m_up))
        return m_bitRate == 0 ? EOPNOTSUPP : m_fixed ? EINVAL : EBUSY;
    if (request.bitRate != 0)
        m_bitRate = static_cast<long>(request.bitRate);
    if ((request.which & IFF_UP) && m_up != ((request.flags & IFF_UP) != 0))
        setUp(!m_up);
    return 0;
}

void Bus::setUp(bool up) {
    m_up = up;
    m_queue.clear();
    if (up)
        m_off = false; // the controller starts afresh
    else
        tellAll(ENETDOWN);
}

// What a frame takes on the wire, with a bit stuffed in for every tenth of those before its end.
static std::chrono::nanoseconds duration(const can_frame &frame, long bitRate) {
    constexpr long end = 13; // bits
    const long stuffed = (frame.can_id & CAN_EFF_FLAG ? 54L : 34L) + 8L * frame.can_dlc;
    return std::chrono::nanoseconds((stuffed + stuffed / 10 + end) * 1000000000L / bitRate);
}

int Bus::take(const can_frame &frame, Member &sender) {
    if (!m_up)
        return ENETDOWN;
    if (m_busy != 0) {
        m_busy -= m_busy > 0 ? 1 : 0;
        return ENOBUFS;
    }
    if (m_off)
        return 0;
    int copies = 1;
    if (m_lose > 0 && --m_lose == 0)
        copies = 0;
    if (m_double > 0 && --m_double == 0)
        copies = 2;
    if (m_bitRate == 0) {
        for (; copies > 0; --copies)
            deliver(frame, &sender);
        return 0;
    }
    if (m_queue.size() >= longestQueue)
        return ENOBUFS;
    const Clock::time_point from = m_queue.empty() ? Clock::now() : m_queue.back().due;
    for (; copies > 0; --copies)
        m_queue.push_back({from + duration(frame, m_bitRate), frame, &sender});
    return 0;
}

void Bus::deliverDue() {
    while (!m_queue.empty() && m_queue.front().due <= Clock::now()) {
        deliver(m_queue.front().frame, m_queue.front().sender);
        m_queue.pop_front();
    }
}

// A member whose queue is full loses the frame.
void Bus::deliver(const can_frame &frame, const Member *sender) {
    for (const auto &member : m_members) {
        const bool own = member.get() == sender;
        const bool wanted =
            own ? member->options.ownFrames && member->options.loopback : !sender || sender->options.loopback;
        if (member->data < 0 || !wanted || !passes(member->options, frame))
            continue;
        Delivery delivery;
        delivery.frame = frame;
        delivery.messageFlags = (sender ? int(MSG_DONTROUTE) : 0) | (own ? int(MSG_CONFIRM) : 0);
        send(member->data, &delivery, sizeof delivery, MSG_DONTWAIT | MSG_NOSIGNAL);
    }
}

} // namespace can_bus
