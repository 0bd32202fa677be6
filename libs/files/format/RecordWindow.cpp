#include "libs/files/format/RecordWindow.h"

#include <cstring>

namespace files {

namespace {

constexpr std::size_t windowSize = 256 * 1024;
constexpr unsigned char byteOrderMark[] = {0xEF, 0xBB, 0xBF};

} // namespace

RecordWindow::RecordWindow(InputFile &file) : m_file(file), m_buffer(windowSize), m_at(m_buffer.data()), m_end(m_at) {}

Status RecordWindow::refill() {
    const std::size_t rest = available();
    std::memmove(m_buffer.data(), m_at, rest);
    std::size_t got = 0;
    const Status read = m_file.read(m_buffer.data() + rest, windowSize - rest, got);
    m_atFileEnd = rest + got < windowSize;
    m_at = m_buffer.data();
    m_end = m_at + rest + got;
    if (!m_started && available() >= sizeof byteOrderMark &&
        std::memcmp(m_at, byteOrderMark, sizeof byteOrderMark) == 0)
        m_at += sizeof byteOrderMark;
    m_started = true;
    return read;
}

} // namespace files
