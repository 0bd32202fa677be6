#include "libs/zvbl/Trace.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <unistd.h>

#include "libs/zvbl/Text.h"
#include "libs/zvbl/TraceFile.h"

namespace zvbl {
namespace {

constexpr std::size_t mostListed = 4096; // bytes that are discarded in a row

std::string now() {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    tm local{};
    localtime_r(&time.tv_sec, &local);
    char text[40];
    const std::size_t length = strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    std::snprintf(text + length, sizeof text - length, ".%06ld", time.tv_nsec / 1000);
    return text;
}

// One word of a line.
std::string wordOf(const std::string &port) {
    std::string word;
    for (const char letter : printable(port))
        word += letter == ' ' ? "\\x20" : std::string(1, letter);
    return word;
}

} // namespace

Trace::Trace(const std::string &port) : m_port(wordOf(port)) {
    const char *path = std::getenv("ZVBL_TRACE");
    if (path && *path)
        m_file = openTraceFile(path);
}

Trace::~Trace() {
    tellCount();
    if (m_file >= 0)
        close(m_file);
}

void Trace::line(char mark, const std::uint8_t *bytes, std::size_t count) {
    if (!on() || count == 0)
        return;
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(3 * count);
    for (std::size_t i = 0; i < count; ++i) {
        if (i)
            text += ' ';
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 0xF];
    }
    write(mark, text);
}

void Trace::discarded(const std::uint8_t *bytes, std::size_t count) {
    const std::size_t listed = std::min(count, mostListed - m_listed);
    line('x', bytes, listed);
    m_listed += listed;
    m_counted += count - listed;
}

void Trace::discarded(const std::string &text) {
    const std::size_t bytes = std::min(text.size(), mostListed - m_listed);
    m_listed += bytes;
    if (bytes == text.size())
        write('x', text);
    else
        ++m_counted;
}

// Ends a row of what was discarded.
void Trace::tellCount() {
    if (m_counted > 0)
        put('x', std::to_string(m_counted) + " more");
    m_listed = m_counted = 0;
}

void Trace::write(char mark, const std::string &text) {
    if (mark != 'x')
        tellCount();
    put(mark, text);
}

void Trace::put(char mark, const std::string &text) {
    if (!on())
        return;
    const std::string whole = now() + ' ' + m_port + ' ' + mark + ' ' + printable(text) + '\n';
    [[maybe_unused]] const ssize_t written = ::write(m_file, whole.data(), whole.size());
}

} // namespace zvbl
