#include "device/MapText.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr off_t longestMap = 1024 * 1024;

// The bytes of a regular file of at most 1 MB; false for any other. Nothing that is no file is waited for.
bool readSmallFile(const std::string &path, std::string &text) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat info;
    bool good = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= longestMap;
    text.resize(good ? static_cast<std::size_t>(info.st_size) : 0);
    std::size_t got = 0;
    while (good && got < text.size()) {
        const ssize_t n = ::read(fd, &text[got], text.size() - got);
        good = n > 0 || (n < 0 && errno == EINTR);
        got += n > 0 ? static_cast<std::size_t>(n) : 0;
    }
    ::close(fd);
    return good;
}

// Walks over a text as the reader of INI files does, which knows quotes, comments and continued lines.
class ValueScan {
public:
    explicit ValueScan(std::string_view text) : m_text(text) {}

    // Whether a value, or a part of one between commas, begins with "@" or a backslash.
    bool findsMark() {
        while (m_at < m_text.size())
            if (step(m_text[m_at++]))
                return true;
        return false;
    }

private:
    bool step(char c) {
        if (c == '"') {
            m_quoted = !m_quoted;
        } else if (c == '\\') {
            ++m_at; // what it stands before belongs to it
            return std::exchange(m_fresh, false);
        } else if (m_quoted) {
            return plain(c);
        } else if (c == '\n' || c == '\r') {
            m_inValue = m_fresh = false;
        } else if (c == ';') {
            m_at = std::min(m_text.find_first_of("\n\r", m_at), m_text.size());
        } else if ((c == '=' && !m_inValue) || (c == ',' && m_inValue)) {
            m_inValue = m_fresh = true;
        } else {
            return plain(c);
        }
        return false;
    }

    bool plain(char c) {
        if (m_fresh && std::string_view(" \t\v\f\n\r").find(c) != std::string_view::npos)
            return false;
        return std::exchange(m_fresh, false) && c == '@';
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    bool m_quoted = false;
    bool m_inValue = false;
    bool m_fresh = false; // only blanks and quotes since the value began
};

} // namespace

bool IsHarmlessMap(const std::string &path) {
    std::string text;
    return readSmallFile(path, text) && !ValueScan(text).findsMark();
}
