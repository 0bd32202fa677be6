#include "line/channel/Channel.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t longestLine = 64 * 1024 * 1024;

[[noreturn]] void fail(const std::string &what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

std::string lineOf(const Json &message) {
    return message.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace

Channel::~Channel() {
    close(m_descriptor);
}

void Channel::send(const Json &message) {
    const std::string line = lineOf(message);
    for (std::size_t sent = 0; sent < line.size();) {
        const ssize_t now = ::send(m_descriptor, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
        if (now < 0 && errno != EINTR)
            fail("the other end of the channel is gone");
        sent += now > 0 ? static_cast<std::size_t>(now) : 0;
    }
}

void Channel::post(const Json &message) {
    m_toSend += lineOf(message);
    sendMore();
}

void Channel::sendMore() {
    while (!m_toSend.empty()) {
        const ssize_t now = ::send(m_descriptor, m_toSend.data(), m_toSend.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (now < 0 && errno == EINTR)
            continue;
        if (now < 0 && errno != EAGAIN)
            m_toSend.clear();
        if (now < 0)
            break;
        m_toSend.erase(0, static_cast<std::size_t>(now));
    }
    if (m_toSend.empty())
        m_toSend.shrink_to_fit(); // an image is large, and there are many nests
}

short Channel::awaited() const {
    return static_cast<short>(m_toSend.empty() ? POLLIN : POLLIN | POLLOUT);
}

bool Channel::take(Json &message) {
    const std::size_t end = m_read.find('\n');
    if (end == std::string::npos && m_read.size() > longestLine)
        throw std::runtime_error("a message is too long");
    if (end == std::string::npos)
        return false;
    message = Json::parse(m_read.substr(0, end), nullptr, false);
    m_read.erase(0, end + 1);
    if (!message.is_object())
        throw std::runtime_error("a message is no object");
    return true;
}

Channel::Got Channel::receive(Json &message, Wait wait) {
    while (!take(message)) {
        char part[65536];
        const ssize_t got = recv(m_descriptor, part, sizeof part, wait == Wait::none ? MSG_DONTWAIT : 0);
        if (got < 0 && errno == EAGAIN)
            return Got::silence;
        if (got == 0 || (got < 0 && errno == ECONNRESET))
            return Got::end;
        if (got < 0 && errno != EINTR)
            fail("the channel can't be read");
        m_read.append(part, got > 0 ? static_cast<std::size_t>(got) : 0);
    }
    return Got::message;
}
