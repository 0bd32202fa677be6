#include "libs/zvbl/Trace.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include <unistd.h>

#include "foundation/TraceFile.h"
#include "libs/zvbl/Text.h"
#include "libs/zvbl/TraceRun.h"
#include "libs/zvbl/wire/Wire.h"

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

// The first two lines of a WRITE, of this length at most, are its opcode and its address.
constexpr int plainLines = 2;
constexpr std::size_t longestPlain = 8;

bool isAnswer(std::uint8_t byte) {
    return byte == wire::ack || byte == wire::nack || byte == wire::busy;
}

std::string valueOf(const char *name) {
    const char *value = std::getenv(name);
    return value ? value : "";
}

} // namespace

Trace::Trace(const std::string &port, const char *link)
    : m_port(asWord(port)), m_showsData(valueOf("ZVBL_TRACE_DATA") != "no") {
    const std::string path = valueOf("ZVBL_TRACE");
    std::string why;
    if (!path.empty())
        m_file = openTraceFile(path, why);
    if (on() && isFirstOfRun(path))
        remark(describeRun(link));
}

Trace::~Trace() {
    tellCount();
    if (m_file >= 0)
        close(m_file);
}

void Trace::line(char mark, const std::uint8_t *bytes, std::size_t count) {
    if (!on() || count == 0)
        return;
    const bool started = count == 2 && bytes[0] == wire::spiStart;
    if (hides(mark, count, (count == 1 || started) && isAnswer(bytes[count - 1]))) {
        write(mark, std::to_string(count) + " bytes");
        return;
    }
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
        frame('x', text);
    else
        ++m_counted;
}

void Trace::beginExchange(bool isRead, bool isWrite) {
    m_mayHear = m_mayHear || isRead || isWrite;
    m_sendsData = isWrite;
    m_sentInCommand = 0;
}

void Trace::endExchange(bool succeeded) {
    m_mayHear = m_mayHear && !succeeded;
    m_sendsData = false;
}

// Whether so many bytes may be data that are not to be shown. Plain is what can only be an answer.
bool Trace::hides(char mark, std::size_t count, bool plain) {
    if (mark == '>')
        ++m_sentInCommand;
    if (m_showsData)
        return false;
    if (mark == '>')
        return m_sendsData && (m_sentInCommand > plainLines || count > longestPlain);
    return mark == 'x' || (m_mayHear && !plain);
}

void Trace::frame(char mark, const std::string &text) {
    const std::size_t identifier = std::min(text.find(' '), text.size());
    const std::size_t count = (text.size() - identifier) / 3;
    const bool plain =
        count == 1 && isAnswer(static_cast<std::uint8_t>(std::strtoul(text.c_str() + identifier, nullptr, 16)));
    if (!hides(mark, count, plain) || count == 0)
        write(mark, text);
    else
        write(mark, mark == 'x' ? "not shown" : text.substr(0, identifier) + ' ' + std::to_string(count) + " bytes");
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
