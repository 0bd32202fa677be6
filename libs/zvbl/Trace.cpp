#include "libs/zvbl/Trace.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace zvbl {
namespace {

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

} // namespace

Trace::Trace(std::string port) : m_port(std::move(port)) {
    const char *path = std::getenv("ZVBL_TRACE");
    // O_NONBLOCK: a FIFO that nobody reads must not hold up the link.
    if (path && *path)
        m_file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0644);
}

Trace::~Trace() {
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

void Trace::write(char mark, const std::string &text) {
    if (!on())
        return;
    const std::string whole = now() + ' ' + m_port + ' ' + mark + ' ' + text + '\n';
    [[maybe_unused]] const ssize_t written = ::write(m_file, whole.data(), whole.size());
}

} // namespace zvbl
