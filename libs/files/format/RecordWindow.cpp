#include "libs/files/format/RecordWindow.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace files {

namespace {

constexpr std::size_t largestWindow = 256 * 1024;
constexpr unsigned char byteOrderMark[] = {0xEF, 0xBB, 0xBF};

// A small file fits whole, with a byte more, so that the first read finds its end.
std::size_t windowFor(std::uint64_t fileSize) {
    constexpr std::size_t smallest = 2 * RecordWindow::maxRecord;
    return fileSize < largestWindow ? std::max(smallest, static_cast<std::size_t>(fileSize) + 1) : largestWindow;
}

} // namespace

RecordWindow::RecordWindow(InputFile &file)
    : m_file(file), m_buffer(windowFor(file.size())), m_at(m_buffer.data()), m_end(m_at) {}

Status RecordWindow::refill() {
    const std::size_t rest = available();
    std::memmove(m_buffer.data(), m_at, rest);
    std::size_t got = 0;
    const Status read = m_file.read(m_buffer.data() + rest, m_buffer.size() - rest, got);
    m_read += got;
    m_atFileEnd = rest + got < m_buffer.size();
    m_at = m_buffer.data();
    m_end = m_at + rest + got;
    if (!m_started && available() >= sizeof byteOrderMark &&
        std::memcmp(m_at, byteOrderMark, sizeof byteOrderMark) == 0)
        m_at += sizeof byteOrderMark;
    m_started = true;
    return read;
}

} // namespace files
