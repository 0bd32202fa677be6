#include "line/view/Terminal.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// A screen of its own, without cursor, and lines that end at its edge; and all of it back.
constexpr char begin[] = "\033[?1049h\033[?25l\033[?7l\033[2J";
constexpr char end[] = "\033[?7h\033[?25h\033[?1049l";

int resizeNotice = -1; // the end of a pipe that the signal is told to

void noteResize(int) {
    const int kept = errno;
    const ssize_t ignored = write(resizeNotice, "", 1);
    static_cast<void>(ignored); // a full pipe tells it too
    errno = kept;
}

std::string fromEnvironment(const char *name) {
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

// One of our own, so that it can be told not to wait without telling the shell's.
int ownDescriptor() {
    const char *name = ttyname(STDOUT_FILENO);
    const int own = name == nullptr ? -1 : open(name, O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    return own >= 0 ? own : fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
}

} // namespace

bool Terminal::isThere() {
    const std::string kind = fromEnvironment("TERM");
    return isatty(STDOUT_FILENO) != 0 && !kind.empty() && kind != "dumb";
}

Terminal::Terminal() : m_descriptor(ownDescriptor()) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
        m_resized = ends[0];
        resizeNotice = ends[1];
        struct sigaction action {};
        action.sa_handler = noteResize;
        action.sa_flags = SA_RESTART;
        sigaction(SIGWINCH, &action, nullptr);
    }
    write(begin);
}

Terminal::~Terminal() {
    std::signal(SIGWINCH, SIG_DFL);
    if (m_resized >= 0) {
        close(m_resized);
        close(resizeNotice);
    }
    // What is under way may have been cut within a sequence.
    const std::string last = (m_kept.empty() ? "" : "\030") + std::string(end);
    m_kept.clear();
    write(last);
    close(m_descriptor);
}

ScreenSize Terminal::size() const {
    winsize size{};
    if (ioctl(m_descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
        return {};
    return {size.ws_col, size.ws_row};
}

bool Terminal::takeResized() const {
    char bytes[64];
    bool any = false;
    while (m_resized >= 0 && read(m_resized, bytes, sizeof bytes) > 0)
        any = true;
    return any;
}

void Terminal::write(const std::string &text) {
    m_kept += text;
    while (!m_kept.empty()) {
        const ssize_t sent = ::write(m_descriptor, m_kept.data(), m_kept.size());
        if (sent > 0)
            m_kept.erase(0, static_cast<std::size_t>(sent));
        else if (errno == EAGAIN)
            return;
        else if (errno != EINTR)
            m_kept.clear(); // nobody is there any more
    }
}

Glyphs glyphsOfEnvironment() {
    std::string locale;
    for (const char *name : {"LC_ALL", "LC_CTYPE", "LANG"})
        locale = locale.empty() ? fromEnvironment(name) : locale;
    std::transform(locale.begin(), locale.end(), locale.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    const bool utf8 = locale.find("UTF-8") != locale.npos || locale.find("UTF8") != locale.npos;
    return {utf8, Terminal::isThere() && fromEnvironment("NO_COLOR").empty()};
}
