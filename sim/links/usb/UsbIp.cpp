#include "sim/links/usb/UsbIp.h"

#include <algorithm>
#include <cerrno>
#include <set>

namespace sim {

namespace {

enum Command : std::uint32_t { cmdSubmit = 1, cmdUnlink = 2, retSubmit = 3, retUnlink = 4 };

// Where the numbers of a message stand, in bytes.
enum At : std::size_t {
    atCommand = 0,
    atNumber = 4,
    atDirection = 12, // 1 towards the host
    atEndpoint = 16,
    atUnlinked = 20, // of UNLINK: the number of the transfer
    atLength = 24,   // of SUBMIT, the length of its data
    atPackets = 32,  // of an isochronous transfer
    atSetup = 40,
};

constexpr std::size_t messageLength = 48;
constexpr std::size_t longestData = 1024 * 1024;

std::uint32_t number(const Bytes &bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at]) << 24 | static_cast<std::uint32_t>(bytes[at + 1]) << 16 |
           static_cast<std::uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
}

// An answer: command, the number of what it answers, a status of the kernel (0 or a negative errno), and how
// much data follows.
void append(Bytes &bytes, Command command, std::uint32_t of, int status, std::size_t length) {
    const std::uint32_t numbers[] = {
        command, of, 0, 0, 0, static_cast<std::uint32_t>(status), static_cast<std::uint32_t>(length)};
    const std::size_t end = bytes.size() + messageLength;
    for (const std::uint32_t value : numbers)
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    bytes.resize(end);
}

} // namespace

void UsbIp::forget() {
    m_arrived.clear();
    m_unlinked.clear();
    m_waiting.clear();
    m_silent.clear();
    m_answered.clear();
}

// 0 when nothing whole is there yet.
std::size_t UsbIp::wholeLength() const {
    if (m_arrived.size() < messageLength)
        return 0;
    const bool data = number(m_arrived, atCommand) == cmdSubmit && number(m_arrived, atDirection) == 0;
    const std::size_t whole = messageLength + (data ? number(m_arrived, atLength) : 0);
    return m_arrived.size() < whole ? 0 : whole;
}

bool UsbIp::receive(const std::uint8_t *bytes, std::size_t length, Nanoseconds now) {
    m_arrived.insert(m_arrived.end(), bytes, bytes + length);
    while (m_arrived.size() >= messageLength) {
        const std::uint32_t packets = number(m_arrived, atPackets);
        const bool submit = number(m_arrived, atCommand) == cmdSubmit;
        if (submit && (number(m_arrived, atLength) > longestData || (packets != 0 && packets != 0xFFFFFFFF)))
            return false;
        const std::size_t whole = wholeLength();
        if (whole == 0)
            return true;
        if (!takeMessage(now))
            return false;
        m_arrived.erase(m_arrived.begin(), m_arrived.begin() + static_cast<std::ptrdiff_t>(whole));
    }
    return true;
}

bool UsbIp::takeMessage(Nanoseconds now) {
    const std::uint32_t message = number(m_arrived, atNumber);
    switch (number(m_arrived, atCommand)) {
    case cmdSubmit:
        m_waiting.push_back(transferOf(message));
        askWaiting(now);
        return true;
    case cmdUnlink:
        // A transfer that is over already is none that could be taken back.
        append(m_unlinked, retUnlink, message, unlink(number(m_arrived, atUnlinked)) ? -ECONNRESET : 0, 0);
        return true;
    default: return false;
    }
}

UsbIp::Transfer UsbIp::transferOf(std::uint32_t message) const {
    Transfer transfer;
    transfer.number = message;
    transfer.in = number(m_arrived, atDirection) != 0;
    transfer.endpoint = static_cast<std::uint8_t>(number(m_arrived, atEndpoint));
    transfer.length = number(m_arrived, atLength);
    transfer.setup = parseSetup(m_arrived.data() + atSetup);
    if (!transfer.in) {
        const auto data = m_arrived.begin() + messageLength;
        transfer.out.assign(data, data + static_cast<std::ptrdiff_t>(transfer.length));
    }
    return transfer;
}

// Transfers of one endpoint are served in their order.
void UsbIp::askWaiting(Nanoseconds now) {
    std::set<unsigned> stuck; // endpoints whose next transfer still waits
    for (auto it = m_waiting.begin(); it != m_waiting.end();) {
        const unsigned endpoint = it->endpoint * 2U + (it->in ? 1 : 0);
        UsbAnswer answer = stuck.count(endpoint) != 0 ? UsbAnswer::wait() : ask(*it, now);
        if (answer.kind == UsbAnswer::Kind::wait) {
            stuck.insert(endpoint);
            ++it;
            continue;
        }
        settle(*it, std::move(answer));
        it = m_waiting.erase(it);
    }
}

void UsbIp::settle(const Transfer &transfer, UsbAnswer answer) {
    if (answer.kind == UsbAnswer::Kind::silent) {
        m_silent.push_back(transfer);
        return;
    }
    const bool done = answer.kind == UsbAnswer::Kind::done;
    const std::size_t length = !done ? 0 : transfer.in ? answer.data.size() : transfer.out.size();
    const auto later = [&answer](const Answered &other) { return other.answer.at > answer.at; };
    m_answered.insert(std::find_if(m_answered.begin(), m_answered.end(), later),
                      {transfer.number, transfer.endpoint == 0, length, std::move(answer)});
}

UsbAnswer UsbIp::ask(const Transfer &transfer, Nanoseconds now) {
    if (transfer.endpoint == 0)
        return m_device.control(transfer.setup, transfer.out, now);
    return transfer.in ? m_device.in(transfer.endpoint, transfer.length, now)
                       : m_device.out(transfer.endpoint, transfer.out, now);
}

bool UsbIp::unlink(std::uint32_t number) {
    const auto remove = [number](auto &queue) {
        const auto same = [number](const auto &transfer) { return transfer.number == number; };
        const auto it = std::find_if(queue.begin(), queue.end(), same);
        const bool found = it != queue.end();
        if (found)
            queue.erase(it);
        return found;
    };
    return remove(m_waiting) || remove(m_silent) || remove(m_answered);
}

Bytes UsbIp::takeDue(Nanoseconds now) {
    Bytes bytes;
    std::swap(bytes, m_unlinked);
    while (!m_answered.empty() && m_answered.front().answer.at <= now) {
        const Answered next = std::move(m_answered.front());
        m_answered.pop_front();
        if (!m_device.presence(next.answer.at).attached)
            return bytes;
        const bool done = next.answer.kind == UsbAnswer::Kind::done;
        append(bytes, retSubmit, next.number, done ? 0 : -EPIPE, next.length);
        bytes.insert(bytes.end(), next.answer.data.begin(), next.answer.data.end());
        if (next.control && now > next.answer.at)
            m_device.delivered(now);
    }
    askWaiting(now);
    return bytes;
}

std::optional<Nanoseconds> UsbIp::nextDue(Nanoseconds now) {
    askWaiting(now); // so that what has happened by now is not waited for
    std::optional<Nanoseconds> due = m_device.nextEvent(now);
    if (!m_answered.empty() && (!due || m_answered.front().answer.at < *due))
        due = m_answered.front().answer.at;
    return m_unlinked.empty() ? due : now;
}

} // namespace sim
