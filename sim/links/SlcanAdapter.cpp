#include "sim/links/SlcanAdapter.h"

#include <charconv>
#include <utility>

#include "sim/chip/Hex.h"

namespace sim {

namespace {

constexpr char done = '\r';
constexpr char refused = '\a';
constexpr std::size_t longestLine = 26; // T, eight digits, the length, eight bytes
constexpr std::size_t queueSize = 16;   // frames that wait for the bus

constexpr unsigned speeds[] = {10000, 20000, 50000, 100000, 125000, 250000, 500000, 800000, 1000000}; // S0 to S8

// What F tells, once.
constexpr std::uint8_t transmitQueueFull = 0x02;
constexpr std::uint8_t busError = 0x80;

// Hexadecimal digits, and nothing else.
bool parseHex(std::string_view text, std::uint32_t &number) {
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, 16);
    return !text.empty() && result.ec == std::errc() && result.ptr == end;
}

// tiiiL, and after it the bytes; T with eight digits of identifier; r and R without bytes.
bool parseFrame(std::string_view line, CanFrame &frame) {
    const char kind = line[0];
    frame.extended = kind == 'T' || kind == 'R';
    frame.remote = kind == 'r' || kind == 'R';
    const std::size_t digits = frame.extended ? 8 : 3;
    const std::uint32_t last = frame.extended ? 0x1FFFFFFF : 0x7FF;
    std::uint32_t length = 0;
    if (line.size() < digits + 2 || !parseHex(line.substr(1, digits), frame.id) || frame.id > last ||
        !parseHex(line.substr(digits + 1, 1), length) || length > 8)
        return false;
    frame.data.resize(length);
    line.remove_prefix(digits + 2);
    if (line.size() != (frame.remote ? 0 : 2 * length))
        return false;
    for (std::size_t i = 0; 2 * i < line.size(); ++i) {
        std::uint32_t byte = 0;
        if (!parseHex(line.substr(2 * i, 2), byte))
            return false;
        frame.data[i] = static_cast<std::uint8_t>(byte);
    }
    return true;
}

} // namespace

const SlcanAdapter::Command SlcanAdapter::commands[] = {
    {'S', closed, &SlcanAdapter::setSpeed},
    {'O', closed, &SlcanAdapter::openChannel},
    {'L', closed, &SlcanAdapter::openChannel},
    {'C', open | listening, &SlcanAdapter::closeChannel},
    {'t', open, &SlcanAdapter::transmit},
    {'T', open, &SlcanAdapter::transmit},
    {'r', open, &SlcanAdapter::transmit},
    {'R', open, &SlcanAdapter::transmit},
    {'F', open | listening, &SlcanAdapter::tellFlags},
    {'V', closed | open | listening, &SlcanAdapter::tellVersion},
    {'v', closed | open | listening, &SlcanAdapter::tellVersion},
    {'N', closed | open | listening, &SlcanAdapter::tellVersion},
    {'Z', closed, &SlcanAdapter::setTimestamps},
    {'M', closed, &SlcanAdapter::setFilter},
    {'m', closed, &SlcanAdapter::setFilter},
};

std::string SlcanAdapter::receive(std::string_view characters, Nanoseconds now) {
    std::string answer;
    for (const char character : characters) {
        if (character != done) {
            if (m_state.line.size() <= longestLine)
                m_state.line += character;
            continue;
        }
        const std::string line = std::exchange(m_state.line, {});
        const Reply reply = obey(line, now);
        if (reply.done) {
            answer += reply.text + done;
        } else {
            m_log.refused("adapter: \"" + line + "\": " + reply.text);
            answer += refused;
        }
    }
    return answer;
}

SlcanAdapter::Reply SlcanAdapter::obey(const std::string &line, Nanoseconds now) {
    if (line.empty())
        return {true, {}};
    for (const Command &command : commands)
        if (command.letter == line[0])
            return (command.channels & m_state.channel) != 0
                       ? (this->*command.carryOut)(line, now)
                       : Reply{false, m_state.channel == closed ? "the channel is closed"
                                      : m_state.channel == open ? "the channel is open"
                                                                : "the channel only listens"};
    return {false, "unknown command"};
}

SlcanAdapter::Reply SlcanAdapter::setSpeed(const std::string &line, Nanoseconds) {
    if (line.size() != 2 || line[1] < '0' || line[1] > '8')
        return {false, "there is no such speed"};
    m_state.speed = speeds[line[1] - '0'];
    return {true, {}};
}

SlcanAdapter::Reply SlcanAdapter::openChannel(const std::string &line, Nanoseconds) {
    if (line.size() != 1 || m_state.speed == 0)
        return {false, line.size() != 1 ? "malformed" : "no speed is set"};
    m_state.channel = line[0] == 'L' ? listening : open;
    return {true, {}};
}

SlcanAdapter::Reply SlcanAdapter::closeChannel(const std::string &line, Nanoseconds) {
    if (line.size() != 1)
        return {false, "malformed"};
    m_state.channel = closed;
    return {true, {}};
}

SlcanAdapter::Reply SlcanAdapter::transmit(const std::string &line, Nanoseconds now) {
    CanFrame frame;
    if (!parseFrame(line, frame))
        return {false, "malformed"};
    while (!m_state.unsent.empty() && m_state.unsent.front() <= now)
        m_state.unsent.pop_front();
    if (m_state.unsent.size() >= queueSize) {
        m_state.flags |= transmitQueueFull;
        return {false, "16 frames are waiting for the bus"};
    }
    const CanLine::Sent sent = m_bus.fromHost(frame, now, m_state.speed);
    m_state.unsent.push_back(sent.through);
    if (sent.noise)
        m_state.flags |= busError;
    return {true, frame.extended ? "Z" : "z"};
}

SlcanAdapter::Reply SlcanAdapter::tellFlags(const std::string &line, Nanoseconds) {
    if (line.size() != 1)
        return {false, "malformed"};
    return {true, "F" + hex(std::exchange(m_state.flags, std::uint8_t{0}), 2)};
}

SlcanAdapter::Reply SlcanAdapter::tellVersion(const std::string &line, Nanoseconds) {
    if (line.size() != 1)
        return {false, "malformed"};
    return {true, line + (line == "N" ? "ZV32" : "0100")};
}

SlcanAdapter::Reply SlcanAdapter::setTimestamps(const std::string &line, Nanoseconds) {
    if (line != "Z0" && line != "Z1")
        return {false, "malformed"};
    m_state.timestamps = line == "Z1";
    return {true, {}};
}

SlcanAdapter::Reply SlcanAdapter::setFilter(const std::string &line, Nanoseconds) {
    constexpr std::size_t size = 9;
    std::uint32_t bits = 0;
    if (line.size() != size || !parseHex(std::string_view(line).substr(1), bits))
        return {false, "malformed"};
    (line[0] == 'M' ? m_state.code : m_state.mask) = bits;
    return {true, {}};
}

// Two filters of 16 bits: identifier, remote bit, and four bits that do not count. A mask bit of 1 lets
// either value pass.
bool SlcanAdapter::passes(const CanFrame &frame) const {
    const std::uint32_t bits = (frame.id << 5 | (frame.remote ? 0x10U : 0U)) * 0x10001U;
    const std::uint32_t wrong = (bits ^ m_state.code) & ~m_state.mask & 0xFFF0FFF0U;
    return (wrong >> 16) == 0 || (wrong & 0xFFFFU) == 0;
}

std::string SlcanAdapter::hear(const TimedFrame &timed) {
    const std::string name = "frame " + nameOf(timed.frame) + " of the chip";
    if (m_state.channel == closed) {
        m_log.note(name + " is lost: the adapter is closed");
        return {};
    }
    if (timed.speed != m_state.speed) {
        m_log.ignored(name + ": at " + std::to_string(timed.speed) + " bits per second, the adapter is at " +
                      std::to_string(m_state.speed));
        m_state.flags |= busError;
        return {};
    }
    if (!passes(timed.frame))
        return {};
    std::string line = "t" + hex(timed.frame.id, 3) + hex(static_cast<std::uint32_t>(timed.frame.data.size()), 1);
    for (const std::uint8_t byte : timed.frame.data)
        line += hex(byte, 2);
    if (m_state.timestamps) {
        constexpr Nanoseconds minute = 60000;
        line += hex(static_cast<std::uint32_t>(timed.at / millisecond % minute), 4);
    }
    return line + done;
}

} // namespace sim
