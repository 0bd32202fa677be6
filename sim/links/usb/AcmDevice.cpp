#include "sim/links/usb/AcmDevice.h"

#include <algorithm>

namespace sim {

namespace {

// Endpoints, without the direction bit.
constexpr std::uint8_t notification = 1;
constexpr std::uint8_t data = 2;

// Requests of PSTN 1.2, 6.3, all to the interface of endpoint 1.
constexpr std::uint8_t toInterface = 0x21;
constexpr std::uint8_t fromInterface = 0xA1;
enum Request : std::uint8_t {
    setLineCodingRequest = 0x20,
    getLineCoding = 0x21,
    setControlLineState = 0x22,
    sendBreak = 0x23,
};

// A line coding: the rate in four bytes, lowest first, stop bits (0: one), parity, data bits.
constexpr std::size_t codingLength = 7;
constexpr std::size_t parityAt = 5;
constexpr std::size_t bitsAt = 6;
constexpr std::uint8_t evenParity = 2;

unsigned rateOf(const Bytes &coding) {
    return coding[0] | coding[1] << 8 | coding[2] << 16 | static_cast<unsigned>(coding[3]) << 24;
}

// The chip's UART takes nothing else; a second stop bit is a pause to it.
bool understood(const Bytes &coding) {
    return coding[parityAt] == evenParity && coding[bitsAt] == 8;
}

UsbDescriptors acmDescriptors() {
    // A test pair of the public range of 1209, and not that of a chip in DFU mode.
    const Bytes device = {18, 1, 0x00, 0x02, 0x02, 0, 0, 64, 0x09, 0x12, 0x02, 0x00, 0x00, 0x01, 0, 1, 2, 1};
    const Bytes configuration = {
        9,    2,    67,
        0,    2,    1,
        0,    0x80, 50,
        9,    4,    0,
        0,    1,    0x02,
        0x02, 0x01, 0, // communications interface, ACM
        5,    0x24, 0x00,
        0x10, 0x01, // CDC 1.1
        5,    0x24, 0x01,
        0x00, 1, // no call management
        4,    0x24, 0x02,
        0x06, // line coding, control lines, break
        5,    0x24, 0x06,
        0,    1, // interface 0 controls interface 1
        7,    5,    0x80 | notification,
        3,    8,    0,
        16, // notifications
        9,    4,    1,
        0,    2,    0x0A,
        0,    0,    0, // data interface
        7,    5,    data,
        2,    64,   0,
        0, // to the chip
        7,    5,    0x80 | data,
        2,    64,   0,
        0, // from the chip
    };
    return {device, configuration, {"ZV32 serial adapter", "ACM1"}};
}

} // namespace

AcmDevice::AcmDevice(const Wiring &wiring, Bootloader &bootloader, Faults &faults, Log &log, bool pace, Nanoseconds now)
    : m_log(log), m_pace(pace), m_descriptors(acmDescriptors()), m_board(wiring, bootloader, log, now),
      m_protocol(bootloader), m_line(m_protocol, faults), m_coding{0x80, 0x25, 0, 0, 0, 0, 8} {} // 9600 8N1

UsbAnswer AcmDevice::control(const UsbSetup &setup, const Bytes &out, Nanoseconds now) {
    if (setup.standard())
        return m_standard.answer(setup, now);
    if (setup.type == toInterface && setup.request == setLineCodingRequest && out.size() == codingLength)
        return setLineCoding(out, now);
    if (setup.type == fromInterface && setup.request == getLineCoding) {
        const auto end = m_coding.begin() + std::min<std::ptrdiff_t>(setup.length, codingLength);
        return UsbAnswer::done(now, Bytes(m_coding.begin(), end));
    }
    if (setup.type == toInterface && setup.request == setControlLineState)
        return setControlLines(setup.value, now);
    return setup.type == toInterface && setup.request == sendBreak ? UsbAnswer::done(now) : UsbAnswer::stall(now);
}

UsbAnswer AcmDevice::setLineCoding(const Bytes &coding, Nanoseconds now) {
    m_coding = coding;
    constexpr char parities[] = "NOEMS";
    const char parity = coding[parityAt] < 5 ? parities[coding[parityAt]] : '?';
    m_log.note("line coding: " + std::to_string(rateOf(coding)) + " " + std::to_string(coding[bitsAt]) + parity);
    return UsbAnswer::done(now);
}

UsbAnswer AcmDevice::setControlLines(unsigned lines, Nanoseconds now) {
    constexpr unsigned dtr = 1;
    constexpr unsigned rts = 2;
    m_board.setLines((lines & dtr) != 0, (lines & rts) != 0, now);
    if (m_board.held())
        m_line.toHost().clear();
    return UsbAnswer::done(now);
}

UsbAnswer AcmDevice::out(std::uint8_t endpoint, const Bytes &bytes, Nanoseconds now) {
    if (endpoint != data || !m_standard.configured())
        return UsbAnswer::stall(now);
    if (!understood(m_coding)) {
        m_log.refused(std::to_string(bytes.size()) + " bytes, not with 8 data bits and even parity");
        return UsbAnswer::done(now);
    }
    for (const std::uint8_t byte : bytes)
        m_line.fromHost(byte, now, m_pace ? rateOf(m_coding) : 0);
    return UsbAnswer::done(now);
}

UsbAnswer AcmDevice::in(std::uint8_t endpoint, std::size_t length, Nanoseconds now) {
    if (!m_standard.configured())
        return UsbAnswer::stall(now);
    std::deque<TimedByte> &queue = m_line.toHost();
    Bytes bytes;
    while (endpoint == data && bytes.size() < length && !queue.empty() && queue.front().at <= now) {
        bytes.push_back(queue.front().byte);
        queue.pop_front();
    }
    return bytes.empty() ? UsbAnswer::wait() : UsbAnswer::done(now, bytes);
}

void AcmDevice::busReset(Nanoseconds) {
    m_standard.reset();
}

// A fault unplugs after the bytes that were under way.
void AcmDevice::followHangup(Nanoseconds now) {
    if (const std::optional<Nanoseconds> since = m_plug.pluggedInAgain(now))
        powerUp(*since);
    if (!m_plug.away() && m_line.hangup() && m_line.toHost().empty())
        m_plug.unplug(m_line.hangup()->replugMs, now);
}

UsbPresence AcmDevice::presence(Nanoseconds now) {
    followHangup(now);
    return m_plug.presence();
}

std::optional<Nanoseconds> AcmDevice::nextEvent(Nanoseconds now) {
    followHangup(now);
    if (m_plug.away())
        return m_plug.back();
    const std::deque<TimedByte> &queue = m_line.toHost();
    return !queue.empty() && queue.front().at > now ? std::optional(queue.front().at) : std::nullopt;
}

void AcmDevice::pressReset(Nanoseconds now) {
    m_line.toHost().clear();
    m_board.button(now);
}

void AcmDevice::losePower(Nanoseconds now) {
    powerUp(now);
    m_plug.flicker();
}

// The board and the adapter have their power from the port.
void AcmDevice::powerUp(Nanoseconds now) {
    m_standard.reset();
    m_line.replug();
    m_board.losePower(now);
}

} // namespace sim
