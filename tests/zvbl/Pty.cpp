#include "tests/zvbl/Pty.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

Pty::Pty() {
    termios raw{};
    cfmakeraw(&raw);
    char name[128];
    if (openpty(&m_master, &m_slave, name, &raw, nullptr) != 0)
        throw std::runtime_error("no pseudo terminal");
    m_path = name;
}

Pty::~Pty() {
    unplug();
    ::close(m_slave);
}

zvbl::Bytes Pty::read(int timeoutMs) {
    pollfd port{m_master, POLLIN, 0};
    if (poll(&port, 1, timeoutMs) <= 0)
        return {};
    zvbl::Bytes bytes(4096);
    const ssize_t count = ::read(m_master, bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

void Pty::write(const zvbl::Bytes &bytes) {
    if (!bytes.empty() && ::write(m_master, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        throw std::runtime_error("the line takes no bytes");
}

void Pty::unplug() {
    if (m_master >= 0)
        ::close(m_master);
    m_master = -1;
}

zvbl::Bytes hex(const std::string &text) {
    zvbl::Bytes bytes;
    std::istringstream words(text);
    for (std::string word; words >> word;)
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(word, nullptr, 16)));
    return bytes;
}

std::string hex(const zvbl::Bytes &bytes) {
    std::string text;
    char digits[4];
    for (const std::uint8_t byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += (text.empty() ? "" : " ") + std::string(digits);
    }
    return text;
}
