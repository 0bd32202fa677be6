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

// A word of characters that mean nothing to the reader of INI files.
bool isPlain(std::string_view word) {
    return std::all_of(word.begin(), word.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '.';
    });
}

bool isSection(std::string_view line) {
    return line.size() > 2 && line.front() == '[' && line.back() == ']' && isPlain(line.substr(1, line.size() - 2));
}

// Reads plain lines; false for any other, and for what stands there twice.
class PlainReader {
public:
    bool take(std::string_view line) {
        if (line.empty())
            return true;
        if (isSection(line)) {
            m_inProduct = line == "[Product]";
            return !m_inProduct || !std::exchange(m_hasProduct, true);
        }
        const std::size_t equals = line.find('=');
        if (equals == 0 || equals == std::string_view::npos)
            return false;
        const std::string_view name = line.substr(0, equals);
        const std::string_view value = line.substr(equals + 1);
        return isPlain(name) && isPlain(value) && keep(name, value);
    }

    MapIdentity identity() const { return {m_pid.value_or(std::string()), m_serial.value_or(std::string())}; }

private:
    bool keep(std::string_view name, std::string_view value) {
        if (!m_inProduct || (name != "PID" && name != "Serial"))
            return true;
        std::optional<std::string> &place = name == "PID" ? m_pid : m_serial;
        const bool first = !place;
        place = value;
        return first;
    }

    bool m_inProduct = false;
    bool m_hasProduct = false;
    std::optional<std::string> m_pid;
    std::optional<std::string> m_serial;
};

} // namespace

std::optional<MapIdentity> ReadPlainMap(const std::string &path) {
    std::string text;
    if (!readSmallFile(path, text))
        return std::nullopt;
    PlainReader reader;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = std::min(rest.find('\n'), rest.size());
        if (!reader.take(rest.substr(0, length)))
            return std::nullopt;
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
    return reader.identity();
}

bool IsHarmlessMap(const std::string &path) {
    std::string text;
    return readSmallFile(path, text) && !ValueScan(text).findsMark();
}
