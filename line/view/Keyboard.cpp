#include "line/view/Keyboard.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "line/view/Keys.h"

namespace {

constexpr char escape = '\033';

} // namespace

Keyboard::Keyboard(bool alsoElsewhere) : m_descriptor(fcntl(STDIN_FILENO, F_GETFD) >= 0 ? STDIN_FILENO : -1) {
    if (m_descriptor < 0)
        return;
    if (isatty(m_descriptor) == 0) {
        m_descriptor = alsoElsewhere ? m_descriptor : -1;
        return;
    }
    // MEANT: whoever runs in the background is stopped when he touches the terminal.
    if (tcgetpgrp(m_descriptor) != getpgrp() || tcgetattr(m_descriptor, &m_before) != 0) {
        m_descriptor = -1;
        return;
    }
    m_isTerminal = true;
    termios now = m_before;
    now.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    now.c_cc[VMIN] = 0;
    now.c_cc[VTIME] = 0;
    now.c_cc[VSUSP] = _POSIX_VDISABLE; // a line that is stopped would leave chips half made
    tcsetattr(m_descriptor, TCSANOW, &now);
}

Keyboard::~Keyboard() {
    if (m_isTerminal)
        tcsetattr(STDIN_FILENO, TCSANOW, &m_before);
}

std::vector<std::size_t> Keyboard::take() {
    std::vector<std::size_t> nests;
    pollfd wait = {m_descriptor, POLLIN, 0};
    if (m_descriptor < 0 || poll(&wait, 1, 0) <= 0)
        return nests;
    char bytes[256];
    const ssize_t got = read(m_descriptor, bytes, sizeof bytes);
    if (got <= 0 && (!m_isTerminal || (wait.revents & (POLLHUP | POLLERR)) != 0))
        m_descriptor = -1; // its end, which would be readable for ever
    for (ssize_t i = 0; i < got; ++i)
        if (const auto nest = isKey(bytes[i]) ? nestOfKey(bytes[i]) : std::nullopt)
            nests.push_back(*nest);
    return nests;
}

// False for what is part of a sequence.
bool Keyboard::isKey(char byte) {
    const Sequence before = m_sequence;
    if (byte == escape)
        m_sequence = Sequence::begun;
    else if (before == Sequence::begun)
        m_sequence = byte == '[' || byte == 'O' ? Sequence::open : Sequence::none;
    else if (before == Sequence::open)
        m_sequence = byte >= '@' && byte <= '~' ? Sequence::none : Sequence::open;
    return byte != escape && before == Sequence::none;
}
