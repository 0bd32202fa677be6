#include "tests/zvbl/CanChip.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include <linux/can/raw.h>
#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tests/zvbl/Pty.h"

namespace {

constexpr int patienceMs = 3000;
constexpr int afterTheEndMs = 5;

std::string describe(const can_frame &frame) {
    const zvbl::Bytes number = {static_cast<std::uint8_t>(frame.can_id >> 8), static_cast<std::uint8_t>(frame.can_id)};
    const std::string id = hex(number);
    const std::string data = hex(zvbl::Bytes(frame.data, frame.data + frame.can_dlc));
    return id.substr(1, 1) + id.substr(3) + (data.empty() ? "" : " " + data);
}

can_frame frameOf(const std::string &text) {
    std::istringstream words(text);
    std::string id, data;
    words >> id;
    std::getline(words, data);
    can_frame frame{};
    frame.can_id = static_cast<canid_t>(std::stoul(id, nullptr, 16));
    const zvbl::Bytes bytes = hex(data);
    frame.can_dlc = static_cast<__u8>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), frame.data);
    return frame;
}

} // namespace

CanChip::CanChip(CanScript script) : m_script(std::move(script)) {
    connect();
    m_thread = std::thread([this] { serve(); });
}

CanChip::~CanChip() {
    if (m_thread.joinable())
        m_thread.join();
    ::close(m_socket);
}

std::string CanChip::finish() {
    m_thread.join();
    return m_complaint;
}

void CanChip::connect() {
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = socket(AF_CAN, SOCK_RAW | SOCK_CLOEXEC, CAN_RAW);
    sockaddr_can address{};
    address.can_family = AF_CAN;
    address.can_ifindex = static_cast<int>(if_nametoindex("can0"));
    if (bind(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
        throw std::runtime_error("the chip is not on the bus");
}

void CanChip::send(const std::string &frames) {
    std::istringstream list(frames);
    for (std::string text; std::getline(list, text, ',');) {
        const can_frame frame = frameOf(text);
        while (write(m_socket, &frame, sizeof frame) < 0 && errno == ENOBUFS) // as at a paced bus
            std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
}

// The next frame; empty: none in time. A bus that is taken down and up again is the same.
std::string CanChip::hear(int timeoutMs) {
    pollfd port{m_socket, POLLIN, 0};
    can_frame frame{};
    while (poll(&port, 1, timeoutMs) > 0) {
        if (read(m_socket, &frame, sizeof frame) == sizeof frame)
            return describe(frame);
        if (errno != ENETDOWN)
            break;
    }
    return "";
}

void CanChip::serve() {
    for (std::size_t i = 0; i < m_script.size(); ++i) {
        std::istringstream list(m_script[i].host);
        for (std::string text; std::getline(list >> std::ws, text, ',');) {
            const std::string heard = hear(patienceMs);
            if (heard != text) {
                m_complaint = "turn " + std::to_string(i) + ": host sent [" + heard + "], not [" + text + "]";
                return;
            }
        }
        send(m_script[i].chip);
        if (m_script[i].then)
            m_script[i].then();
    }
    const std::string more = hear(afterTheEndMs);
    if (!more.empty())
        m_complaint = "after the end host sent [" + more + "]";
}
