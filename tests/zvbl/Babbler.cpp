#include "tests/zvbl/Babbler.h"

#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr int patienceMs = 10;

} // namespace

Babbler::Babbler(Pty &pty, zvbl::Bytes bytes, Begin begin, zvbl::Bytes answer)
    : m_pty(pty), m_bytes(std::move(bytes)),
      m_thread([this, begin, answer = std::move(answer)] { serve(begin, answer); }) {}

Babbler::~Babbler() {
    m_stop = true;
    m_thread.join();
}

void Babbler::serve(Begin begin, const zvbl::Bytes &answer) {
    while (begin == Begin::whenSpokenTo && !m_stop && m_pty.read(patienceMs).empty()) {
    }
    m_pty.write(answer);
    const int flags = fcntl(m_pty.chipEnd(), F_GETFL);
    fcntl(m_pty.chipEnd(), F_SETFL, flags | O_NONBLOCK); // the host may stop reading
    while (!m_stop) {
        pollfd port{m_pty.chipEnd(), POLLOUT | POLLIN, 0};
        poll(&port, 1, patienceMs);
        zvbl::Bytes heard(64);
        [[maybe_unused]] ssize_t count = ::read(m_pty.chipEnd(), heard.data(), heard.size());
        count = ::write(m_pty.chipEnd(), m_bytes.data(), m_bytes.size());
    }
    fcntl(m_pty.chipEnd(), F_SETFL, flags);
}
